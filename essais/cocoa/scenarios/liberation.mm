// Qui écoute la page s’en va avec la fenêtre, bien que WebKit retienne ce qu’on lui a donné pour l’écouter.

#include "Scenario.hpp"

#include <memory>

using namespace essais;
namespace fenetres = keltrove::fenetre;

namespace {

class Personne final : public fenetres::ObservateurDeLaVue {
  void quandNavigationCommence() override {}
  void quandNavigationAvance() override {}
  void quandNavigationFinie() override {}
  void quandNavigationRatee(const fenetres::EchecDeNavigation&) override {}
  void quandOnReessaie() override {}
  void quandOnBasculeLeDetail() override {}
  void quandOnRecharge() override {}
  void quandLaPageEcrit(const std::string&, const keltrove::pont::MessageDeLaPage&) override {}
  bool laPageVeutOuvrir(const fenetres::DemandeDAdresse&) override { return false; }
  bool estLaPage(const std::string&) const override { return false; }
  void quandDesFichiersSontIllisibles(std::size_t) override {}
  void quandLeRegardChange(bool) override {}
  void quandLeLecteurDEcranChange(const fenetres::LecteurDEcran&) override {}
};

FenetrePrincipale* autreQue(FenetrePrincipale* celui) {
  for (NSWindow* une in NSApp.windows)
    if (une.delegate != celui && [une.delegate isKindOfClass:[FenetrePrincipale class]])
      return (FenetrePrincipale*)une.delegate;
  return nil;
}

__weak FenetrePrincipale* ecouteur;
VueWebDepot* vue; // tenue, comme WebKit la tiendrait le temps de finir

} // namespace

SCENARIO(quiEcouteLaPageEstRenduAvecSaFenetre) {
  attendreLEtape("echec-demarrage");
  faire([] {
    FenetrePrincipale* const celuiDeLApplication = controleur();
    Personne personne;
    const auto seconde = std::make_unique<keltrove::bureau::FenetreCocoa>(personne);
    ecouteur = autreQue(celuiDeLApplication);
    vue = ecouteur.vueWeb;
    exiger(ecouteur != nil && vue != nil, "une seconde fenêtre");
  });
  attendre("qui écoutait la page, rendu", [] { return ecouteur == nil; });
  faire([] { exiger(ecrire(vue, @"keltroveNotifications", @"un texte"), "le canal est toujours là"); });
  quitter();
}
