// BureauEnregistreur : une application native sans système, avec sa fenêtre et son centre de notifications.
#pragma once

#include "CentreEnregistreur.hpp"
#include "VueEnregistreuse.hpp"
#include "fenetre/Bureau.hpp"

#include <memory>
#include <utility>

namespace keltrove::essais {

class BureauEnregistreur final : public fenetre::Bureau {
  std::unique_ptr<VueEnregistreuse> prete_ = std::make_unique<VueEnregistreuse>();

public:
  VueEnregistreuse& vue = *prete_; // vit autant que la fenêtre qui la prend
  CentreEnregistreur centre;
  int activations = 0;
  int fermetures = 0;
  int departs = 0;

  std::unique_ptr<fenetre::VueFenetre> creerLaFenetre(fenetre::ObservateurDeLaVue& observateur) override {
    vue.observateur = &observateur;
    return std::move(prete_);
  }
  pont::CentreNotifications& notifications() override { return centre; }
  void activerLApplication() override { ++activations; }
  std::vector<std::pair<std::string, std::function<void()>>> liens;
  void ouvrirDansLeNavigateur(const std::string& adresse, std::function<void()> rate) override {
    liens.emplace_back(adresse, std::move(rate));
  }
  void demanderLaFermeture() override { ++fermetures; }
  void partir() override { ++departs; }
};

} // namespace keltrove::essais
