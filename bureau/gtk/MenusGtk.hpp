// MenusGtk : la barre de menus de GTK et ses raccourcis, traduits de la table.
//
// Command devient Ctrl+Maj, comme dans les terminaux : Ctrl+lettre appartient à l’interpréteur affiché dans
// la page. Ni Alt+lettre ni F10 ne sont pris ; Ctrl+Maj+F10 ouvre le premier menu. Les actions elles-mêmes
// sont dans ActionsGtk. Fil principal seulement.
#pragma once

#include "fenetre/ArticlesDeMenu.hpp"

#include <functional>
#include <vector>

#include <giomm/menu.h>
#include <gtkmm/application.h>
#include <gtkmm/popovermenubar.h>
#include <gtkmm/window.h>

namespace keltrove::bureau {

class MenusGtk {
public:
  explicit MenusGtk(Gtk::Window& fenetre);

  // À placer en haut de la fenêtre ; vide jusqu’à poser().
  Gtk::Widget& barre() { return barre_; }
  // Une fois ; les menus de la table sont lus ici, non gardés.
  void poser(const std::vector<fenetre::Menus::Menu>& menus, Gtk::Application& application);

  // Ce qui avait le clavier avant que la barre ne le prenne ; nul si rien ne l’avait.
  Gtk::Widget* dernierFocus() const { return dernierFocus_; }

  // Passer d’un menu à son voisin en ouvre un sans que les menus se soient fermés.
  std::function<void()> quandUnMenuSOuvre;
  std::function<void()> quandLesMenusSeFerment;

private:
  void suivreLeFocus();
  void suivreLOuverture(const std::vector<fenetre::Menus::Menu>& menus);
  void rendreLeClavier();
  void ouvrirAuClavier();

  Gtk::Window& fenetre_;
  const Glib::RefPtr<Gio::Menu> modele_ = Gio::Menu::create();
  Gtk::PopoverMenuBar barre_{modele_};
  std::vector<Gtk::Widget*> volets_;
  Gtk::Widget* dernierFocus_ = nullptr;
};

} // namespace keltrove::bureau
