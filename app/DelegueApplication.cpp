#include "app/DelegueApplication.hpp"

#include "fenetre/Menus.hpp"
#include "socle/Journal.hpp"
#include "socle/Reglages.hpp"

#include <utility>

#include <fmt/format.h>

namespace keltrove::app {

namespace Journal = socle::Journal;
namespace Reglages = socle::Reglages;

namespace {

constexpr int regardsSupplementaires = 12;
constexpr double entreDeuxRegards = 0.25;
constexpr double dureeDuBandeau = 4.0;
constexpr std::size_t verificationsALaFois = 4;

} // namespace

DelegueApplication::DelegueApplication(std::shared_ptr<moteur::MoteurServeur> moteur,
                                       std::shared_ptr<socle::BoucleEvenements> boucle,
                                       fenetre::Bureau& bureau)
    : moteur_(std::move(moteur)), boucle_(std::move(boucle)), bureau_(bureau),
      arrierePlan_(KELTROVE_IDENTIFIANT ".utilitaire", verificationsALaFois),
      surveillance_(
          boucle_, arrierePlan_,
          [m = moteur_] {
            const auto port = m->port();
            return port && m->cEstBienKeltrove(*port);
          },
          [this] { quandLeServeurNeRepondPlus(); }) {}

DelegueApplication::~DelegueApplication() {
  moteur_->quandLeServeurMeurt = nullptr;
}

void DelegueApplication::applicationDidFinishLaunching() {
  fenetre_ = std::make_unique<fenetre::FenetrePrincipale>(bureau_, *boucle_);
  fenetre_->quandOnDemandeUnEssai = [this] { lancerLeDemarrage(false); };
  fenetre_->quandLaPageEstLa = [this] { surveillerDeNouveau(); };
  fenetre::Menus::installer(fenetre_->vue());
  fenetre_->ecran().montrerAttente("keltrove démarre…", "Je regarde si le serveur tourne déjà.");
  fenetre_->afficher();
  if (!Reglages::accessoire()) fenetre_->pont().demanderLaPermissionUneSeuleFois();
  moteur_->quandLeServeurMeurt = [this](const moteur::ErreurServeur& erreur) { quandLeServeurMeurt(erreur); };
  lancerLeDemarrage(true);
  programmerLaFin();
}

void DelegueApplication::programmerLaFin() {
  const double secondes = Reglages::secondesAvantAuToQuitter();
  if (!(secondes > 0)) return;
  finProgrammee_ = boucle_->apres(secondes, [this] {
    Journal::etape("essai-quitte-tout-seul");
    bureau_.demanderLaFermeture();
  });
}

void DelegueApplication::quandOnNousRelance() {
  if (fermetureEnCours_)
    aRouvrir_ = true;
  else
    fenetre_->ramener();
}

void DelegueApplication::lancerLeDemarrage(bool premiereFois) {
  if (demarrageEnCours_ || fermetureEnCours_) return;
  demarrageEnCours_ = true;
  surveillance_.arreter();
  // Ce qui se chargeait ne doit ni couvrir l’essai qui commence, ni le faire passer pour raté.
  fenetre_->chargement().seTaire();
  fenetre_->ecran().montrerAttente(
      premiereFois ? "keltrove démarre…" : "Nouvel essai…",
      "Je regarde si le serveur tourne déjà. S’il dort, je l’allume et j’attends qu’il réponde.");
  Journal::etape("demarrage-demande");
  moteur_->demarrer(temoin_.garder([this](const moteur::Demarrage& issue) { quandLeDemarrageFinit(issue); }));
}

void DelegueApplication::quandLeDemarrageFinit(const moteur::Demarrage& issue) {
  demarrageEnCours_ = false;
  if (issue)
    annoncer(*issue);
  else
    expliquer(issue.error());
}

void DelegueApplication::annoncer(const moteur::ResultatDemarrage& resultat) {
  if (const auto* rattache = std::get_if<moteur::Rattache>(&resultat)) {
    Journal::etape("rattache", {{"port", std::int64_t{rattache->port}}});
    if (fermetureEnCours_) return;
    fenetre_->ecran().montrerAttente(
        "keltrove est déjà en route",
        fmt::format("Je me branche sur le serveur qui tourne (port {}) : rien n’a été relancé.",
                    rattache->port));
    ouvrirLaPage(rattache->port);
  } else {
    const auto& allume = std::get<moteur::Allume>(resultat);
    Journal::etape("allume", {{"port", std::int64_t{allume.port}}});
    if (fermetureEnCours_) return;
    fenetre_->ecran().montrerAttente("Le serveur répond",
                                     fmt::format("J’ouvre la page (port {}).", allume.port));
    ouvrirLaPage(allume.port);
  }
}

void DelegueApplication::ouvrirLaPage(int port) {
  fenetre_->chargerLaPage(port);
  surveillance_.demarrer();
  guetterLeMotDeMiseAJour(regardsSupplementaires);
  noterLaSante(port);
}

void DelegueApplication::expliquer(const moteur::ErreurServeur& erreur) {
  Journal::etape("echec-demarrage", {{"cause", titreCourt(erreur)}});
  if (fermetureEnCours_) return;
  fenetre_->chargement().abandonner();
  fenetre_->ecran().montrerErreur(erreur);
}

void DelegueApplication::noterLaSante(int port) {
  // Un système à court de fils ne mérite pas d’alerte pour une ligne de journal.
  [[maybe_unused]] const bool depose = arrierePlan_.deposer([m = moteur_, port] {
    if (const auto sante = m->sante(port))
      Journal::etape("sante",
                     {{"version", sante->version}, {"carnet", std::int64_t{sante->terminauxAuCarnet}}});
  });
}

void DelegueApplication::guetterLeMotDeMiseAJour(int restant) {
  if (const auto message = moteur_->messageDeMiseAJour()) {
    fenetre_->afficherBandeau(*message, dureeDuBandeau);
    return;
  }
  if (restant == 0) return;
  regardsSurLeMot_.push_back(boucle_->apres(entreDeuxRegards, [this, restant] {
    regardsSurLeMot_.pop_front();
    guetterLeMotDeMiseAJour(restant - 1);
  }));
}

// La page a pu revenir d’elle-même, son serveur rallumé par d’autres, alors que l’on n’y croyait plus.
void DelegueApplication::surveillerDeNouveau() {
  if (!surveillance_.active() && !demarrageEnCours_ && moteur_->port()) surveillance_.demarrer();
}

void DelegueApplication::quandLeServeurMeurt(const moteur::ErreurServeur& erreur) {
  surveillance_.arreter();
  // La page qui s’ouvrait ne s’ouvrira pas : son échec cacherait la vraie raison.
  fenetre_->chargement().abandonner();
  fenetre_->ecran().montrerErreur(erreur);
  Journal::etape("serveur-mort-en-route");
}

void DelegueApplication::quandLeServeurNeRepondPlus() {
  Journal::etape("serveur-ne-repond-plus");
  fenetre_->ecran().montrerProbleme(
      "Le serveur de keltrove ne répond plus",
      "La page est toujours affichée, mais plus rien ne lui parle : le serveur s’est arrêté ou a été coupé. "
      "Les terminaux qui étaient ouverts sont fermés ; leur liste, elle, a été notée et reviendra.",
      "Cliquez sur « Réessayer » : je le rallume et je rouvre la page.", moteur_->lignesJournal().texte());
}

} // namespace keltrove::app
