// VueEnregistreuse : une fenêtre sans écran. Ses listes sont ce que les essais comparent.
#pragma once

#include "fenetre/VueFenetre.hpp"

#include <utility>
#include <vector>

namespace keltrove::essais {

class VueEnregistreuse final : public fenetre::VueFenetre {
public:
  fenetre::ObservateurDeLaVue* observateur = nullptr;
  std::vector<fenetre::EtatEcran> ecrans;
  std::vector<fenetre::EtatBandeau> bandeaux;
  std::vector<fenetre::Menus::Menu> menus;
  std::vector<std::string> adresses;
  std::vector<std::pair<std::string, std::function<void(std::optional<std::string>)>>> evaluations;
  std::vector<std::string> annonces;
  int devant = 0;
  int derriere = 0;
  int chargementsArretes = 0;

  const fenetre::EtatEcran& ecran() const { return ecrans.back(); }

  void dessiner(const fenetre::EtatEcran& etat) override { ecrans.push_back(etat); }
  void dessiner(const fenetre::EtatBandeau& etat) override { bandeaux.push_back(etat); }
  void poserLesMenus(const std::vector<fenetre::Menus::Menu>& poses) override { menus = poses; }
  void mettreDevant() override { ++devant; }
  std::int64_t mettreDerriere() override {
    ++derriere;
    return 1234;
  }
  // Ce qui arrive pendant le chargement même.
  std::function<void()> quandOnCharge;
  void charger(const std::string& adresse) override {
    adresses.push_back(adresse);
    if (quandOnCharge) quandOnCharge();
  }
  void annoncer(const std::string& texte) override { annonces.push_back(texte); }
  void arreterLeChargement() override { ++chargementsArretes; }
  void evaluer(const std::string& expression, std::function<void(std::optional<std::string>)> fini) override {
    evaluations.emplace_back(expression, std::move(fini));
  }
};

} // namespace keltrove::essais
