// AProposGtk : la petite fenêtre « À propos », avec le journal de ce lancement à copier. Celle de GTK
// suivrait la langue du système, non la nôtre. Les textes sont ceux de fenetre::APropos.
//
// Échap et « Fermer » la cachent ; elle se remontre par present(), et relit alors le journal. Fil
// principal seulement.
#pragma once

#include "bureau/gtk/MenuDeTexte.hpp"

#include <gtkmm/box.h>
#include <gtkmm/button.h>
#include <gtkmm/image.h>
#include <gtkmm/label.h>
#include <gtkmm/scrolledwindow.h>
#include <gtkmm/textview.h>
#include <gtkmm/togglebutton.h>
#include <gtkmm/window.h>

namespace keltrove::bureau {

class AProposGtk final : public Gtk::Window {
public:
  // La parente lui survit.
  explicit AProposGtk(Gtk::Window& parente);

private:
  void construireLesTextes();
  void construireLeJournal();
  void construireLesBoutons();
  void fermerSurEchap();
  void on_show() override;

  Gtk::Box pile_;
  Gtk::Image icone_;
  Gtk::Label nom_;
  Gtk::Label version_;
  Gtk::Label objet_;
  Gtk::Label licence_;
  Gtk::ScrolledWindow cadreDuJournal_;
  Gtk::TextView texteDuJournal_;
  MenuDeTexte menuDuJournal_{texteDuJournal_};
  Gtk::Box boutons_;
  Gtk::ToggleButton voir_;
  Gtk::Button copier_;
  Gtk::Button fermer_;
};

} // namespace keltrove::bureau
