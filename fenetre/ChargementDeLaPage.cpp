#include "fenetre/ChargementDeLaPage.hpp"

#include <utility>

#include <fmt/format.h>

namespace keltrove::fenetre {
namespace {

constexpr double delaiSansRienRecevoir = 60.0;

} // namespace

ChargementDeLaPage::ChargementDeLaPage(VueFenetre& vue, socle::BoucleEvenements& boucle, Issues issues)
    : vue_(vue), boucle_(boucle), issues_(std::move(issues)) {}

void ChargementDeLaPage::charger(int port) {
  port_ = port;
  ecoute_ = Ecoute::toutes;
  surveillerLeDelai(); // d’abord : le chargement peut échouer aussitôt
  vue_.charger(fmt::format("http://localhost:{}/", port));
}

void ChargementDeLaPage::abandonner() {
  arreter(Ecoute::aPartirDeLaSuivante);
}

void ChargementDeLaPage::seTaire() {
  arreter(Ecoute::aucune);
}

void ChargementDeLaPage::arreter(Ecoute ecoute) {
  ecoute_ = ecoute;
  if (!delai_) return;
  delai_.annuler();
  vue_.arreterLeChargement();
}

void ChargementDeLaPage::commencer() {
  if (ecoute_ == Ecoute::aPartirDeLaSuivante) ecoute_ = Ecoute::toutes;
}

void ChargementDeLaPage::avancer() {
  if (delai_) surveillerLeDelai();
}

void ChargementDeLaPage::finir() {
  if (ecoute_ != Ecoute::toutes) return;
  delai_.annuler();
  issues_.quandElleEstLa();
}

void ChargementDeLaPage::rater(const EchecDeNavigation& echec) {
  if (echec.annulee || ecoute_ != Ecoute::toutes) return;
  delai_.annuler();
  issues_.quandElleRate(echec.description);
}

void ChargementDeLaPage::surveillerLeDelai() {
  delai_ = boucle_.apres(delaiSansRienRecevoir, [this] {
    delai_.annuler();
    vue_.arreterLeChargement();
    issues_.quandElleRate("La page a mis trop longtemps à répondre.");
  });
}

} // namespace keltrove::fenetre
