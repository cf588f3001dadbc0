// ActionsGtk : ce que les articles des menus font, par GTK et WebKit.
//
// Une action que rien ne sait faire ici n’existe pas, et GTK grise son article. Celles d’édition vont à ce
// qui a le clavier ; leurs articles ne se grisent que pendant qu’un menu est ouvert, pour qu’un raccourci
// frappé juste après une sélection ne se perde jamais.
#pragma once

#include "bureau/gtk/AProposGtk.hpp"
#include "bureau/gtk/MenusGtk.hpp"
#include "bureau/gtk/VueWeb.hpp"
#include "socle/Temoin.hpp"

#include <functional>
#include <memory>

#include <gtkmm/applicationwindow.h>

namespace keltrove::bureau {

struct Edition;

class ActionsGtk {
public:
  struct Effets {
    std::function<void()> recharger;
    std::function<void()> quitter;
    std::function<void(Gtk::Window&)> boiteOuverte; // une fois chacune
  };
  // Pose les actions sur la fenêtre, sous les noms de Menus::nomDe. Toutes trois lui survivent.
  ActionsGtk(Gtk::ApplicationWindow& fenetre, MenusGtk& menus, VueWeb& vueWeb, Effets effets);

private:
  void ajouterCellesDeLaFenetre();
  void editer(const Edition& edition);
  void valider();
  void toutPermettre();
  void montrerAPropos();
  bool ilYADeQuoiColler() const;
  void permettre(const Edition& edition, bool oui);

  Gtk::ApplicationWindow& fenetre_;
  MenusGtk& menus_;
  VueWeb& vueWeb_;
  const Effets effets_;
  std::unique_ptr<AProposGtk> aPropos_;
  bool menuOuvert_ = false;
  socle::Temoin temoin_; // une réponse de la page peut arriver après nous
};

} // namespace keltrove::bureau
