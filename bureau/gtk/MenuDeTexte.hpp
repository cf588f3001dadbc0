// MenuDeTexte : le menu contextuel d’un texte que l’on ne fait que lire. Celui de GTK suivrait la langue du
// système, et proposerait de quoi modifier. Le bouton droit, la touche Menu et Maj+F10 l’ouvrent. Fil
// principal seulement.
#pragma once

#include <gtkmm/popovermenu.h>
#include <gtkmm/textview.h>

namespace keltrove::bureau {

class MenuDeTexte {
public:
  // Le texte lui survit.
  explicit MenuDeTexte(Gtk::TextView& texte);
  MenuDeTexte(const MenuDeTexte&) = delete;
  MenuDeTexte& operator=(const MenuDeTexte&) = delete;
  ~MenuDeTexte();

private:
  void ouvrirALaSouris();
  void ouvrirAuClavier();
  void ouvrir(int x, int y);

  Gtk::TextView& texte_;
  Gtk::PopoverMenu volet_;
};

} // namespace keltrove::bureau
