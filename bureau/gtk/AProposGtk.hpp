// AProposGtk : la petite fenêtre « À propos ». Celle de GTK suivrait la langue du système, non la nôtre.
#pragma once

#include <gtkmm/box.h>
#include <gtkmm/button.h>
#include <gtkmm/image.h>
#include <gtkmm/label.h>
#include <gtkmm/window.h>

namespace keltrove::bureau {

class AProposGtk final : public Gtk::Window {
public:
  explicit AProposGtk(Gtk::Window& parente);

private:
  void fermerSurEchap();

  Gtk::Box pile_;
  Gtk::Image icone_;
  Gtk::Label nom_;
  Gtk::Label version_;
  Gtk::Label objet_;
  Gtk::Label licence_;
  Gtk::Button fermer_;
};

} // namespace keltrove::bureau
