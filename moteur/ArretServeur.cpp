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

constexpr const char* rienAArreter =
    "Le serveur de keltrove continue de tourner : ce n’est pas cette application qui l’a allumé.";
constexpr const char* tropLong =
    "Le serveur met du temps à se fermer : je le laisse finir d’écrire sa liste.";

} // namespace

void MoteurServeur::arreter(std::function<void(std::string)> fini) {
  const auto arret = demanderLArret();
  if (!arret) {
    fini(rienAArreter);
    return;
  }
  socle::FileDeTravail attente(KELTROVE_IDENTIFIANT ".arret", 1);
  const auto rendre = [boucle = contexte_.boucle, fini = std::move(fini)](std::string message) {
    boucle->poster([fini, message = std::move(message)] { fini(message); });
  };
  const bool depose = attente.deposer(
      [moi = shared_from_this(), arret = *arret, rendre] { rendre(moi->attendreLaFermeture(arret)); });
  // Sans fil pour attendre, mieux vaut partir que bloquer la fenêtre : le serveur finit seul.
  if (!depose) rendre(tropLong);
}

std::string MoteurServeur::arreterEnAttendant() {
  const auto arret = demanderLArret();
  return arret ? attendreLaFermeture(*arret) : rienAArreter;
}

std::optional<MoteurServeur::Arret> MoteurServeur::demanderLArret() {
  Arret arret{.debut = contexte_.horloge->maintenant()};
  {
    const std::lock_guard garde(verrouEtat_);
    if (!nousLavonsAllume_ || !processus_ || !processus_->tourne()) return std::nullopt;
    arret.processus = processus_;
    arretDemande_ = true;
  }
  if (const auto pid = pidDuServeur()) arret.serveur = identifier(*pid);
  if (arret.serveur && arret.serveur->pid != arret.processus->pid()) ::kill(arret.serveur->pid, SIGTERM);
  arret.processus->terminer();
  return arret;
}

std::string MoteurServeur::attendreLaFermeture(const Arret& arret) const {
  auto& horloge = *contexte_.horloge;
  const auto& serveur = arret.serveur;
  const double limite = horloge.maintenant() + delaiDeFermeture;
  while (horloge.maintenant() < limite) {
    if (!arret.processus->tourne() && !(serveur && enVie(*serveur))) break;
    horloge.dormir(entreDeuxRegards);
  }
  const double ecoule = horloge.maintenant() - arret.debut;
  if (!serveur) return "Le serveur n’a pas été retrouvé : rien à fermer.";
  if (enVie(*serveur)) return tropLong;
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
