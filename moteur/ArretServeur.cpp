// L’arrêt du serveur : qui signaler, combien de temps attendre, et la phrase qui le résume.

#include "moteur/MoteurServeur.hpp"

#include <algorithm>
#include <csignal>
#include <utility>

#include <fmt/format.h>

namespace keltrove::moteur {
namespace {

constexpr double delaiDeFermeture = 12.0;
constexpr double entreDeuxRegards = 0.05;
// Script de démarrage, interprète, serveur : au-delà, ce n’est plus le serveur mais ce qu’il fait tourner.
constexpr int profondeurDeRecherche = 3;

} // namespace

void MoteurServeur::arreter(std::function<void(std::string)> fini) {
  ProcessusPartage processus;
  {
    const std::lock_guard garde(verrouEtat_);
    if (nousLavonsAllume_ && processus_ && processus_->tourne()) {
      processus = processus_;
      arretDemande_ = true;
    }
  }
  if (!processus) {
    fini("Le serveur de keltrove continue de tourner : ce n’est pas cette application qui l’a allumé.");
    return;
  }

  const double debut = contexte_.horloge->maintenant();
  std::optional<Identite> serveur;
  if (const auto pid = pidDuServeur()) serveur = identifier(*pid);
  if (serveur && serveur->pid != processus->pid()) ::kill(serveur->pid, SIGTERM);
  processus->terminer();

  socle::FileDeTravail attente(KELTROVE_IDENTIFIANT ".arret", 1);
  const auto rendre = [boucle = contexte_.boucle, fini = std::move(fini)](std::string message) {
    boucle->poster([fini, message = std::move(message)] { fini(message); });
  };
  const bool depose = attente.deposer([moi = shared_from_this(), processus, serveur, debut, rendre] {
    rendre(moi->attendreLaFermeture(*processus, serveur, debut));
  });
  // Sans fil pour attendre, mieux vaut partir que bloquer la fenêtre : le serveur finit seul.
  if (!depose) rendre("Le serveur met du temps à se fermer : je le laisse finir d’écrire sa liste.");
}

std::string MoteurServeur::attendreLaFermeture(const socle::Processus& processus,
                                               const std::optional<Identite>& serveur, double debut) {
  auto& horloge = *contexte_.horloge;
  const double limite = horloge.maintenant() + delaiDeFermeture;
  while (horloge.maintenant() < limite) {
    if (!processus.tourne() && !(serveur && enVie(*serveur))) break;
    horloge.dormir(entreDeuxRegards);
  }
  const double ecoule = horloge.maintenant() - debut;
  if (!serveur) return "Le serveur n’a pas été retrouvé : rien à fermer.";
  if (enVie(*serveur)) return "Le serveur met du temps à se fermer : je le laisse finir d’écrire sa liste.";
  return fmt::format("Serveur fermé proprement en {:.1f} seconde(s).", ecoule);
}

std::optional<pid_t> MoteurServeur::pidDuServeur() const {
  ProcessusPartage processus;
  std::optional<int> port;
  {
    const std::lock_guard garde(verrouEtat_);
    processus = processus_;
    port = port_;
  }
  if (!processus || !port) return std::nullopt;
  auto candidats = descendants(processus->pid(), profondeurDeRecherche);
  candidats.insert(candidats.begin(), processus->pid());
  const auto trouve = std::ranges::find_if(candidats, [&](pid_t pid) {
    const auto ports = portsEcoutesPar(pid);
    return std::ranges::find(ports, *port) != ports.end();
  });
  if (trouve == candidats.end()) return std::nullopt;
  return *trouve;
}

} // namespace keltrove::moteur
