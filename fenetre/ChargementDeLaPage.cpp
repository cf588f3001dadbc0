#include "fenetre/ChargementDeLaPage.hpp"

#include <utility>

#include <fmt/format.h>

namespace keltrove::fenetre {
namespace {

std::string raisonDe(const EchecDeNavigation& echec) {
  switch (echec.cause) {
  case CauseDEchec::lancementRefuse:
    return "Le système n’a plus de quoi lancer le programme qui dessine la page.";
  case CauseDEchec::memoireDepassee:
    return "Le programme qui dessine la page a dépassé la mémoire permise.";
  case CauseDEchec::arret:
    return "Le programme qui dessine la page s’est arrêté.";
  case CauseDEchec::chargement:
  case CauseDEchec::annulation:
    break;
  }
  return echec.description;
}

} // namespace

ChargementDeLaPage::ChargementDeLaPage(VueFenetre& vue, socle::BoucleEvenements& boucle, Issues issues)
    : vue_(vue), boucle_(boucle), issues_(std::move(issues)) {}

void ChargementDeLaPage::charger(int port) {
  port_ = port;
  ecoute_ = Ecoute::toutes;
  surveillerLeDelai(); // d’abord : le chargement peut échouer aussitôt
  vue_.charger(origine() + "/");
}

std::string ChargementDeLaPage::origine() const {
  return port_ ? fmt::format("http://localhost:{}", *port_) : "";
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
  if (echec.cause == CauseDEchec::annulation || ecoute_ != Ecoute::toutes) return;
  delai_.annuler();
  issues_.quandElleRate(raisonDe(echec));
}

void ChargementDeLaPage::surveillerLeDelai() {
  delai_ = boucle_.apres(delaiSansRienRecevoir, [this] {
    delai_.annuler();
    vue_.arreterLeChargement();
    issues_.quandElleRate("La page a mis trop longtemps à répondre.");
  });
}

} // namespace keltrove::fenetre
