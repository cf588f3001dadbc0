#include "fenetre/SuiviDuGlissement.hpp"

#include <utility>

namespace keltrove::fenetre {

SuiviDuGlissement::SuiviDuGlissement(Effets effets)
    : effets_(std::move(effets)), depot_(effets_.appelerLaPage) {}

void SuiviDuGlissement::commencer() {
  interrompre();
  if (lache_) effets_.conclure(false);
  contenu_ = Contenu::inconnu;
  lache_ = false;
}

void SuiviDuGlissement::apprendre(Portes portes) {
  contenu_ = portes.chemins.empty() && portes.illisibles == 0 ? Contenu::autre : Contenu::fichiers;
  portes_ = std::move(portes);
  glissement_.chemins = portes_.chemins;
  if (lache_) return remettre();
  if (dessus_) survoler();
  if (dessus_ && contenu_ == Contenu::autre) effets_.rendreALaVueWeb();
}

void SuiviDuGlissement::entrer(const Point& point, const MesuresDeLaVue& vue) {
  aller(point, vue);
  dessus_ = true;
  survoler();
}

void SuiviDuGlissement::bouger(const Point& point, const MesuresDeLaVue& vue) {
  aller(point, vue);
  survoler();
}

void SuiviDuGlissement::sortir() {
  dessus_ = false;
  depot_.draggingExited();
}

void SuiviDuGlissement::interrompre() {
  dessus_ = false;
  depot_.draggingEnded();
}

void SuiviDuGlissement::couvrir(bool couverte) {
  couverte_ = couverte;
  if (couverte) depot_.draggingEnded();
}

void SuiviDuGlissement::deposer(const Point& point, const MesuresDeLaVue& vue) {
  aller(point, vue);
  lache_ = true;
  if (contenu_ != Contenu::inconnu) remettre();
}

void SuiviDuGlissement::aller(const Point& point, const MesuresDeLaVue& vue) {
  glissement_.point = point;
  glissement_.vue = vue;
}

void SuiviDuGlissement::survoler() {
  if (contenu_ != Contenu::fichiers || couverte_) return;
  if (depot_.glisserDeFichiers())
    depot_.draggingUpdated(glissement_);
  else
    depot_.draggingEntered(glissement_);
}

void SuiviDuGlissement::remettre() {
  lache_ = false;
  dessus_ = false;
  effets_.conclure(!couverte_ && remettreALaPage());
}

bool SuiviDuGlissement::remettreALaPage() {
  if (contenu_ == Contenu::autre) {
    if (!portes_.adresses.empty()) depot_.deposerDesAdresses(portes_.adresses, glissement_);
    return !portes_.adresses.empty();
  }
  survoler(); // un départ a pu précéder le dépôt
  const bool pret = depot_.prepareForDragOperation() == VueWebDepot::Reponse::copie;
  const bool remis = pret && depot_.performDragOperation(glissement_).value_or(false);
  depot_.concludeDragOperation();
  depot_.draggingEnded();
  if (portes_.illisibles > 0) effets_.ecarterDesIllisibles(portes_.illisibles);
  return remis;
}

} // namespace keltrove::fenetre
