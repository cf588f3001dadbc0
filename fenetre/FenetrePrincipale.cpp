#include "fenetre/FenetrePrincipale.hpp"

#include "fenetre/PourLaPage.hpp"
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

FenetrePrincipale::FenetrePrincipale(Bureau& bureau, socle::BoucleEvenements& boucle)
    : bureau_(bureau), boucle_(boucle), liensSortants_(boucle), vue_(bureau.creerLaFenetre(*this)),
      pont_(bureau.notifications(), boucle),
      chargement_(*vue_, boucle,
                  {.quandElleEstLa = [this] { montrerLaPage(); },
                   .quandElleRate = [this](const std::string& raison) { signalerPageRatee(raison); }}) {
  ecran_.quandOnDessine = [this](const EtatEcran& etat) { vue_->dessiner(etat); };
  ecran_.quandOnReessaie = [this] { rechargerVraiment(); };
  pont_.vue = [this](const std::string& ligne) { direALaPage(ligne); };
  pont_.activer = [this] { ramener(); };
}

void FenetrePrincipale::afficher() {
  if (Reglages::modeEssai()) return;
  if (Reglages::modeDiscret())
    socle::direSurLaSortieDErreur(fmt::format("  [keltrove] numero-fenetre {}\n", vue_->mettreDerriere()));
  else
    vue_->mettreDevant();
}

void FenetrePrincipale::ramener() {
  bureau_.activerLApplication();
  vue_->mettreDevant();
}

void FenetrePrincipale::montrerLaPage() {
  ecran_.cacher();
  Journal::etape("page-affichee", {{"port", std::int64_t{chargement_.port().value_or(0)}}});
  // Ce que la page croit d’elle-même : qu’on ne la regarde pas, qu’aucun lecteur ne tourne
  // et qu’il la verrait.
  if (regardIci_) direALaPage(PourLaPage::regard(regardIci_));
  if (lecteur_ != LecteurDEcran{}) direALaPage(annonceALaPage(lecteur_));
  sondesPrevues_.push_back(boucle_.apres(delaiAvantLaSonde, [this] {
    sondesPrevues_.pop_front();
    sonderLeContenu();
  }));
  if (quandLaPageEstLa) quandLaPageEstLa();
}

void FenetrePrincipale::sonderLeContenu() {
  vue_->evaluer(expressionDeSonde, temoin_.garder([this](const std::optional<std::string>& reponse) {
    if (reponse && !pageIgnoree_) Journal::etape("page-contenu", lireSonde(*reponse));
  }));
}

// Sans page, la ligne se perd.
void FenetrePrincipale::direALaPage(const std::string& expression) {
  if (chargement_.port()) vue_->evaluer(expression, [](const auto&) {});
}

void FenetrePrincipale::quandLaPageEcrit(const std::string& canal, const pont::MessageDeLaPage& message) {
  if (canal != canalDuLecteur) return pont_.userContentController(canal, message);
  if (const auto texte = texteALire(message)) vue_->annoncer(*texte);
}

bool FenetrePrincipale::laPageVeutOuvrir(const DemandeDAdresse& demande) {
  const auto destination = demande.fenetreNeuve ? destinationDUneFenetreNeuve(demande.adresse)
                                                : destinationDe(demande.adresse, chargement_.origine());
  if (destination == Destination::navigateur && liensSortants_.laisserPartir(demande.geste))
    ouvrirAilleurs(demande.adresse);
  return destination == Destination::cetteFenetre;
}

bool FenetrePrincipale::estLaPage(const std::string& adresse) const {
  return destinationDe(adresse, chargement_.origine()) == Destination::cetteFenetre;
}

void FenetrePrincipale::ouvrirAilleurs(const std::string& adresse) {
  bureau_.ouvrirDansLeNavigateur(adresse, temoin_.garder([this, adresse] {
    if (!pageIgnoree_)
      afficherBandeau("Aucune application ne sait ouvrir ce lien : " + adresse, dureeDUnAvis);
  }));
}

void FenetrePrincipale::quandDesFichiersSontIllisibles(std::size_t combien) {
  if (pageIgnoree_) return;
  afficherBandeau(combien == 1 ? "Un fichier n’a pas été déposé : son nom est illisible. Renommez-le d’abord."
                               : fmt::format("{} fichiers n’ont pas été déposés : leur nom est illisible. "
                                             "Renommez-les d’abord.",
                                             combien),
                  dureeDUnAvis);
}

void FenetrePrincipale::quandLeRegardChange(bool ici) {
  if (ici == regardIci_) return;
  regardIci_ = ici;
  direALaPage(PourLaPage::regard(ici));
}

void FenetrePrincipale::quandLeLecteurDEcranChange(const LecteurDEcran& lecteur) {
  if (lecteur == lecteur_) return;
  lecteur_ = lecteur;
  direALaPage(annonceALaPage(lecteur));
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
  vue_->dessiner(EtatBandeau{.visible = true, .texte = encadre});
  minuteurBandeau_ = boucle_.apres(
      secondes, [this, encadre] { vue_->dessiner(EtatBandeau{.visible = false, .texte = encadre}); });
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
