#include "moteur/MoteurServeur.hpp"

#include "socle/Reglages.hpp"
#include "socle/Texte.hpp"

#include <algorithm>
#include <system_error>
#include <utility>
#include <vector>

namespace keltrove::moteur {

using socle::Reglages::portSouhaite;

namespace {

constexpr double delaiDeReponse = 40.0;
constexpr double entreDeuxTours = 0.25;
constexpr int toursEntreDeuxRecherchesDePort = 8;

} // namespace

socle::Environnement environnementDuServeur(socle::Environnement environnement, const std::string& maison) {
  std::vector<std::string> dossiers = {"/usr/local/bin", "/opt/homebrew/bin", "/usr/bin",
                                       "/bin",           "/usr/sbin",         "/sbin"};
  const auto herites = environnement.lire("PATH").value_or("");
  for (auto& dossier : socle::decouper(herites, ':', socle::MorceauxVides::ecartes))
    if (std::ranges::find(dossiers, dossier) == dossiers.end()) dossiers.push_back(std::move(dossier));
  environnement.definir("PATH", socle::joindre(dossiers, ":"));
  environnement.definir("HOME", maison);
  if (!environnement.lire("LANG")) environnement.definir("LANG", "fr_FR.UTF-8");
  return environnement;
}

MoteurServeur::MoteurServeur(Contexte contexte)
    : contexte_(std::move(contexte)), file_(KELTROVE_IDENTIFIANT ".moteur", 1) {}

void MoteurServeur::demarrer(std::function<void(Demarrage)> fini) {
  const auto rendre = [boucle = contexte_.boucle, fini = std::move(fini)](Demarrage issue) {
    boucle->poster([fini, issue = std::move(issue)] { fini(issue); });
  };
  const int essai = [this] {
    const std::lock_guard garde(verrouEtat_);
    return ++dernierEssai_;
  }();
  const bool depose = file_.deposer([moi = shared_from_this(), essai, rendre] {
    rendre(moi->demarrerVraiment(essai));
    // Guettée plus tôt, la mort du serveur pourrait s’annoncer avant l’issue qui le dit allumé.
    moi->guetterLaMort(essai);
  });
  if (!depose)
    rendre(std::unexpected(
        LancementImpossible{socle::texteDuSysteme(std::errc::resource_unavailable_try_again)}));
}

void MoteurServeur::neLancerPlusRien() {
  const std::lock_guard garde(verrouEtat_);
  lancementInterdit_ = true;
}

void MoteurServeur::arreter(std::function<void(std::string)> fini) {
  const auto arret = commencerLArret();
  if (!arret) {
    fini(ArretServeur::rienAArreter);
    return;
  }
  socle::FileDeTravail attente(KELTROVE_IDENTIFIANT ".arret", 1);
  const auto rendre = [boucle = contexte_.boucle, fini = std::move(fini)](std::string message) {
    boucle->poster([fini, message = std::move(message)] { fini(message); });
  };
  const bool depose = attente.deposer([arret = *arret, rendre] { rendre(arret.attendre()); });
  // Sans fil pour attendre, mieux vaut partir que bloquer la fenêtre : le serveur finit seul.
  if (!depose) rendre(ArretServeur::tropLong);
}

std::string MoteurServeur::arreterEnAttendant() {
  const auto arret = commencerLArret();
  return arret ? arret->attendre() : ArretServeur::rienAArreter;
}

std::optional<int> MoteurServeur::port() const {
  const std::lock_guard garde(verrouEtat_);
  return EtatServeur::port(etat_);
}

bool MoteurServeur::nousLavonsAllume() const {
  const std::lock_guard garde(verrouEtat_);
  return EtatServeur::estLeNotre(etat_);
}

Demarrage MoteurServeur::demarrerVraiment(int essai) {
  if (const int souhaite = portSouhaite(); cEstBienKeltrove(souhaite)) return rattacher(essai, souhaite);
  const auto processus = lancer(essai);
  if (!processus) return std::unexpected(processus.error());
  return attendreLaReponse(essai, *processus, portSouhaite());
}

std::expected<MoteurServeur::ProcessusPartage, ErreurServeur> MoteurServeur::lancer(int essai) {
  const auto commande = contexte_.emplacements.commandeDeDemarrage();
  if (!commande) {
    if (!contexte_.emplacements.node()) return std::unexpected(NodeIntrouvable{});
    return std::unexpected(CodeIntrouvable{contexte_.emplacements.cheminsEssayesPourLeServeur()});
  }
  lignes_->vider();
  const auto environnement = environnementDuServeur(contexte_.environnement, socle::Reglages::maison());

  // Le verrou couvre le lancement : qui interdit de lancer sait ensuite à quoi s’en tenir.
  const std::lock_guard garde(verrouEtat_);
  if (lancementInterdit_)
    return std::unexpected(LancementImpossible{socle::texteDuSysteme(std::errc::operation_canceled)});
  auto processus =
      socle::Processus::lancer({commande->programme, commande->arguments, commande->dossier, environnement},
                               [lignes = std::weak_ptr(lignes_)](std::string_view bloc) {
                                 if (const auto encoreLa = lignes.lock()) encoreLa->noter(bloc);
                               });
  if (!processus) return std::unexpected(LancementImpossible{processus.error()});
  changerDEtat(essai, EtatServeur::Lance{{essai, *processus, EtatServeur::port(etat_)}});
  return *processus;
}

Demarrage MoteurServeur::attendreLaReponse(int essai, const ProcessusPartage& processus, int port) {
  auto& horloge = *contexte_.horloge;
  const double debut = horloge.maintenant();
  for (int tour = 1; horloge.maintenant() - debut < delaiDeReponse; ++tour) {
    if (auto issue = unTour(essai, processus, port, tour)) return *std::move(issue);
    horloge.dormir(entreDeuxTours);
  }
  return std::unexpected(PasDeReponse{port, static_cast<int>(delaiDeReponse), lignes_->texte()});
}

std::optional<Demarrage> MoteurServeur::unTour(int essai, const ProcessusPartage& processus, int port,
                                               int tour) {
  if (!processus->tourne()) return conclureApresUneFin(essai, processus);
  if (cEstBienKeltrove(port)) return allumer(essai, processus, port);
  if (tour % toursEntreDeuxRecherchesDePort != 0) return std::nullopt;
  for (const int autre : portsEcoutesPar(processus->pid()))
    if (autre != port && cEstBienKeltrove(autre)) return allumer(essai, processus, autre);
  return std::nullopt;
}

Demarrage MoteurServeur::conclureApresUneFin(int essai, const ProcessusPartage& processus) {
  if (const int souhaite = portSouhaite(); cEstBienKeltrove(souhaite)) return rattacher(essai, souhaite);
  processus->viderLaSortie();
  auto texte = lignes_->texte();
  if (texte.contains("MODIFIE=")) return std::unexpected(CodeModifie{});
  return std::unexpected(MortAuDemarrage{std::move(texte)});
}

Demarrage MoteurServeur::rattacher(int essai, int port) {
  const std::lock_guard garde(verrouEtat_);
  changerDEtat(essai, EtatServeur::Rattache{port, EtatServeur::dernierLance(etat_)});
  return Rattache{port};
}

Demarrage MoteurServeur::allumer(int essai, const ProcessusPartage& processus, int port) {
  // Un lanceur qui vient de finir pendant que l’on sondait : ce qui répond n’est plus à nous.
  if (!processus->tourne()) return conclureApresUneFin(essai, processus);
  const std::lock_guard garde(verrouEtat_);
  changerDEtat(essai, EtatServeur::Allume{{essai, processus, port}});
  return Allume{port};
}

// Sous le verrou. Un arrêt a le dernier mot sur les essais qui l’ont précédé.
void MoteurServeur::changerDEtat(int essai, EtatServeur::Valeur suivant) {
  if (const auto* arret = std::get_if<EtatServeur::EnArret>(&etat_); arret && essai <= arret->dernierEssai)
    return;
  const auto remplace = EtatServeur::dernierLance(etat_);
  const auto neuf = EtatServeur::dernierLance(suivant);
  if (remplace && (!neuf || neuf->essai != remplace->essai)) anterieurs_.push_back(*remplace);
  std::erase_if(anterieurs_, [](const ServeurLance& serveur) { return !serveur.processus->tourne(); });
  etat_ = std::move(suivant);
}

bool MoteurServeur::estLeDernierLance(int essai) const {
  const std::lock_guard garde(verrouEtat_);
  const auto serveur = EtatServeur::dernierLance(etat_);
  return serveur && serveur->essai == essai;
}

void MoteurServeur::guetterLaMort(int essai) {
  std::optional<ServeurLance> serveur;
  {
    const std::lock_guard garde(verrouEtat_);
    if (const auto* allume = std::get_if<EtatServeur::Allume>(&etat_)) serveur = allume->serveur;
  }
  if (!serveur || serveur->essai != essai) return;
  // Faible dans les deux sens : ni le moteur ni le processus ne doivent se garder en vie l’un l’autre.
  serveur->processus->surveillerLaFin(
      [moi = weak_from_this(), essai, qui = std::weak_ptr(serveur->processus)] {
        const auto moteur = moi.lock();
        const auto processus = qui.lock();
        if (moteur && processus) moteur->signalerLaMort(essai, *processus);
      });
}

void MoteurServeur::signalerLaMort(int essai, socle::Processus& processus) {
  if (!estLeDernierLance(essai)) return;
  processus.viderLaSortie();
  contexte_.boucle->poster([moi = weak_from_this(), essai, erreur = PerduEnRoute{lignes_->texte()}] {
    const auto moteur = moi.lock();
    // Le temps de venir jusqu’ici, un autre a pu être lancé, ou l’arrêt demandé.
    if (moteur && moteur->estLeDernierLance(essai) && moteur->quandLeServeurMeurt)
      moteur->quandLeServeurMeurt(erreur);
  });
}

std::optional<ArretServeur> MoteurServeur::commencerLArret() {
  std::vector<ServeurLance> serveurs;
  {
    const std::lock_guard garde(verrouEtat_);
    const auto serveur = EtatServeur::dernierLance(etat_);
    if (!EtatServeur::estLeNotre(etat_) || !serveur || !serveur->processus->tourne()) return std::nullopt;
    serveurs = anterieurs_;
    serveurs.push_back(*serveur);
    etat_ = EtatServeur::EnArret{dernierEssai_, serveur->port};
  }
  return ArretServeur(serveurs, contexte_.horloge);
}

} // namespace keltrove::moteur
