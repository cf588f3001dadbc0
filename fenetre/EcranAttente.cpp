#include "fenetre/EcranAttente.hpp"

namespace keltrove::fenetre {

EtatEcran::Clavier EtatEcran::clavier() const {
  if (!visible) return Clavier::page;
  return boutonReessayer ? Clavier::reessayer : Clavier::ecran;
}

void EcranAttente::montrerAttente(const std::string& titre, const std::string& phrase) {
  etat_ = {.roue = true, .titre = titre, .phrase = phrase, .detail = etat_.detail};
  dessiner();
}

void EcranAttente::montrerProbleme(const std::string& titre, const std::string& phrase,
                                   const std::string& conseil, const std::optional<std::string>& detail) {
  const bool aDetail = detail && !detail->empty();
  etat_ = {.titre = titre,
           .phrase = phrase,
           .conseil = conseil,
           .boutonReessayer = true,
           .boutonDetail = aDetail,
           .detail = aDetail ? *detail : etat_.detail};
  dessiner();
}

void EcranAttente::montrerErreur(const moteur::ErreurServeur& erreur) {
  montrerProbleme(titreCourt(erreur), explication(erreur), conseil(erreur), journal(erreur));
}

void EcranAttente::cacher() {
  etat_.visible = false;
  etat_.roue = false;
  dessiner();
}

void EcranAttente::reessayer() const {
  if (quandOnReessaie) quandOnReessaie();
}

void EcranAttente::basculerDetail() {
  etat_.cadreDetail = !etat_.cadreDetail;
  etat_.titreDuBoutonDetail = etat_.cadreDetail ? "Masquer le détail" : "Voir le détail";
  dessiner();
}

void EcranAttente::dessiner() const {
  if (quandOnDessine) quandOnDessine(etat_);
}

} // namespace keltrove::fenetre
