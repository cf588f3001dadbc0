// TexteReplie : un texte centré qui se replie à une largeur fixe.
//
// Centrée, une étiquette GTK prend la largeur qui tient dans la hauteur qu’on lui donne, et ne se replie donc
// pas : celle-ci annonce toujours la même largeur. Fil principal seulement.
#pragma once

#include <gtkmm/label.h>
#include <gtkmm/widget.h>

namespace keltrove::bureau {

class TexteReplie final : public Gtk::Widget {
public:
  // La largeur, en points ; la classe, celle de la feuille de style.
  TexteReplie(int largeur, const Glib::ustring& classe);
  ~TexteReplie() override;

  // Vide, il ne tient aucune place.
  void ecrire(const Glib::ustring& texte);

private:
  Gtk::SizeRequestMode get_request_mode_vfunc() const override {
    return Gtk::SizeRequestMode::HEIGHT_FOR_WIDTH;
  }
  void measure_vfunc(Gtk::Orientation sens, int pour, int& minimum, int& naturel, int& ligneMinimale,
                     int& ligneNaturelle) const override;
  void size_allocate_vfunc(int largeur, int hauteur, int ligne) override;

  const int largeur_;
  Gtk::Label label_;
};

} // namespace keltrove::bureau
