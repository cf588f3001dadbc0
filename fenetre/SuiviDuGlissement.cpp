#include "fenetre/SuiviDuGlissement.hpp"

#include <utility>

namespace keltrove::fenetre {

SuiviDuGlissement::SuiviDuGlissement(Effets effets)
    : effets_(std::move(effets)), depot_(effets_.appelerLaPage) {}

void SuiviDuGlissement::commencer() {
  interrompre();
  contenu_ = Contenu::inconnu;
}

void SuiviDuGlissement::apprendre(Portes portes) {
  contenu_ = portes.chemins.empty() && portes.illisibles == 0 ? Contenu::autre : Contenu::fichiers;
  portes_ = std::move(portes);
  glissement_.chemins = portes_.chemins;
  if (lache_) return remettre();
  if (dessus_) survoler();
}

void SuiviDuGlissement::quandLaPageRepond(bool vu) {
  if (!rendu_) return;
  if (!vu) return lache_ ? interrompre() : quitterLaVueWeb();
  vu_ = true;
  if (lache_) remettre();
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
  depot_.draggingExited();
  if (lache_) return;
  dessus_ = false;
  quitterLaVueWeb();
}

void SuiviDuGlissement::interrompre() {
  dessus_ = false;
  depot_.draggingEnded();
  quitterLaVueWeb();
  if (std::exchange(lache_, false)) effets_.conclure(false);
}

void SuiviDuGlissement::couvrir(bool couverte) {
  couverte_ = couverte;
  if (!couverte) return;
  depot_.draggingEnded();
  quitterLaVueWeb();
  if (lache_ && contenu_ == Contenu::autre) interrompre();
}

void SuiviDuGlissement::deposer(const Point& point, const MesuresDeLaVue& vue) {
  aller(point, vue);
  dessus_ = true; // un départ a pu précéder le dépôt
  lache_ = true;
  if (contenu_ != Contenu::inconnu) remettre();
}

void SuiviDuGlissement::aller(const Point& point, const MesuresDeLaVue& vue) {
  glissement_.point = point;
  glissement_.vue = vue;
}

void SuiviDuGlissement::survoler() {
  if (contenu_ == Contenu::inconnu || couverte_) return;
  if (contenu_ == Contenu::autre) {
    if (!std::exchange(rendu_, true)) effets_.rendreALaVueWeb();
    return;
  }
  if (depot_.glisserDeFichiers())
    depot_.draggingUpdated(glissement_);
  else
    depot_.draggingEntered(glissement_);
}

void SuiviDuGlissement::quitterLaVueWeb() {
  vu_ = false;
  if (std::exchange(rendu_, false)) effets_.quitterLaVueWeb();
}

void SuiviDuGlissement::remettre() {
  if (contenu_ == Contenu::autre) return remettreALaVueWeb();
  lache_ = false;
  dessus_ = false;
  effets_.conclure(!couverte_ && remettreALaPage());
}

void SuiviDuGlissement::remettreALaVueWeb() {
  if (couverte_) return interrompre();
  survoler();
  if (!vu_) return;
  lache_ = false;
  dessus_ = false;
  rendu_ = false;
  vu_ = false;
  effets_.deposerDansLaVueWeb();
}

bool SuiviDuGlissement::remettreALaPage() {
  survoler();
  const bool pret = depot_.prepareForDragOperation() == VueWebDepot::Reponse::copie;
  const bool remis = pret && depot_.performDragOperation(glissement_).value_or(false);
  depot_.concludeDragOperation();
  depot_.draggingEnded();
  if (portes_.illisibles > 0) effets_.ecarterDesIllisibles(portes_.illisibles);
  return remis;
}

} // namespace keltrove::fenetre
