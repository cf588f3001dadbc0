#include "fenetre/FenetrePrincipale.hpp"

#include "fenetre/SondeContenu.hpp"
#include "socle/Journal.hpp"
#include "socle/Reglages.hpp"
#include "socle/SortieDErreur.hpp"

#include <fmt/format.h>

namespace keltrove::fenetre {

namespace Journal = socle::Journal;
namespace Reglages = socle::Reglages;

namespace {

constexpr double delaiAvantLaSonde = 1.0;
constexpr double dureeDUnAvis = 6.0;

} // namespace

FenetrePrincipale::FenetrePrincipale(VueFenetre& vue, pont::CentreNotifications& centre,
                                     socle::BoucleEvenements& boucle)
    : vue_(vue), boucle_(boucle), pont_(centre, boucle),
      chargement_(vue, boucle,
                  {.quandElleEstLa = [this] { montrerLaPage(); },
                   .quandElleRate = [this](const std::string& raison) { signalerPageRatee(raison); }}) {
  ecran_.quandOnDessine = [this](const EtatEcran& etat) { vue_.dessiner(etat); };
  ecran_.quandOnReessaie = [this] { rechargerVraiment(); };
  vue_.quandOnReessaie = [this] { ecran_.reessayer(); };
  vue_.quandOnBasculeLeDetail = [this] { ecran_.basculerDetail(); };
  vue_.quandNavigationCommence = [this] { chargement_.commencer(); };
  vue_.quandNavigationAvance = [this] { chargement_.avancer(); };
  vue_.quandNavigationFinie = [this] { chargement_.finir(); };
  vue_.quandNavigationRatee = [this](const EchecDeNavigation& echec) { chargement_.rater(echec); };
  vue_.quandLaPageEcrit = [this](const std::string& canal, const std::optional<std::string>& corps) {
    if (canal == canalDuLecteur)
      faireLire(corps);
    else
      pont_.userContentController(canal, corps);
  };
  vue_.quandUnLienNeSOuvrePas = [this](const std::string& adresse) {
    if (pageIgnoree_) return;
    afficherBandeau("Aucune application ne sait ouvrir ce lien : " + adresse, dureeDUnAvis);
  };
  vue_.quandLeLecteurDEcranChange = [this](const LecteurDEcran& lecteur) { noterLeLecteur(lecteur); };
  pont_.vue = [this](const std::string& ligne) {
    if (chargement_.port()) vue_.evaluer(ligne, [](const auto&) {}); // sans page, la ligne se perd
  };
  pont_.activer = [this] { vue_.mettreDevant(); };
}

FenetrePrincipale::~FenetrePrincipale() {
  vue_.quandOnReessaie = nullptr;
  vue_.quandOnBasculeLeDetail = nullptr;
  vue_.quandOnRecharge = nullptr;
  vue_.quandLaPageEcrit = nullptr;
  vue_.quandUnLienNeSOuvrePas = nullptr;
  vue_.quandLeLecteurDEcranChange = nullptr;
  vue_.quandNavigationCommence = nullptr;
  vue_.quandNavigationAvance = nullptr;
  vue_.quandNavigationFinie = nullptr;
  vue_.quandNavigationRatee = nullptr;
}

void FenetrePrincipale::afficher() {
  if (Reglages::modeEssai()) return;
  if (Reglages::modeDiscret())
    socle::direSurLaSortieDErreur(fmt::format("  [keltrove] numero-fenetre {}\n", vue_.mettreDerriere()));
  else
    vue_.mettreDevant();
}

void FenetrePrincipale::montrerLaPage() {
  ecran_.cacher();
  Journal::etape("page-affichee", {{"port", std::int64_t{chargement_.port().value_or(0)}}});
  // D’elle-même, la page croit qu’aucun ne tourne et qu’il la verrait.
  if (lecteur_ != LecteurDEcran{}) direLeLecteur();
  sondesPrevues_.push_back(boucle_.apres(delaiAvantLaSonde, [this] {
    sondesPrevues_.pop_front();
    sonderLeContenu();
  }));
  if (quandLaPageEstLa) quandLaPageEstLa();
}

void FenetrePrincipale::sonderLeContenu() {
  vue_.evaluer(expressionDeSonde,
               [this, existe = std::weak_ptr(existe_)](const std::optional<std::string>& reponse) {
                 if (reponse && existe.lock() && !pageIgnoree_)
                   Journal::etape("page-contenu", lireSonde(*reponse));
               });
}

void FenetrePrincipale::noterLeLecteur(const LecteurDEcran& lecteur) {
  if (lecteur == lecteur_) return;
  lecteur_ = lecteur;
  if (chargement_.port()) direLeLecteur();
}

void FenetrePrincipale::direLeLecteur() {
  vue_.evaluer(annonceALaPage(lecteur_), [](const auto&) {});
}

void FenetrePrincipale::faireLire(const std::optional<std::string>& corps) {
  if (const auto texte = texteALire(corps)) vue_.annoncer(*texte);
}

void FenetrePrincipale::signalerPageRatee(const std::string& raison) {
  ecran_.montrerProbleme(
      "La page de keltrove ne s’affiche pas",
      "Le serveur répondait, mais la page n’a pas pu s’ouvrir. C’est souvent passager : un "
      "nouvel essai suffit presque toujours.",
      "Cliquez sur « Réessayer ».", raison);
  Journal::etape("page-ratee", {{"raison", raison}});
}

void FenetrePrincipale::afficherBandeau(const std::string& texte, double secondes) {
  const auto encadre = "  " + texte + "  ";
  vue_.dessiner(EtatBandeau{.visible = true, .texte = encadre});
  minuteurBandeau_ = boucle_.apres(
      secondes, [this, encadre] { vue_.dessiner(EtatBandeau{.visible = false, .texte = encadre}); });
  Journal::etape("bandeau", {{"texte", texte}});
}

void FenetrePrincipale::ignorerLaPage() {
  pageIgnoree_ = true;
  sondesPrevues_.clear();
  chargement_.seTaire();
}

void FenetrePrincipale::rechargerVraiment() {
  if (quandOnDemandeUnEssai) quandOnDemandeUnEssai();
}

} // namespace keltrove::fenetre
