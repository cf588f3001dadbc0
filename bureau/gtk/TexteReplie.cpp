#include "bureau/gtk/TexteReplie.hpp"

#include "bureau/gtk/TextesDeGtk.hpp"

namespace keltrove::bureau {

TexteReplie::TexteReplie(int largeur, const Glib::ustring& classe) : largeur_(largeur) {
  label_.add_css_class(classe);
  label_.set_wrap(true);
  label_.set_wrap_mode(Pango::WrapMode::WORD_CHAR);
  label_.set_justify(Gtk::Justification::CENTER);
  label_.set_parent(*this);
  taire(*this);
}

TexteReplie::~TexteReplie() {
  label_.unparent();
}

void TexteReplie::ecrire(const Glib::ustring& texte) {
  label_.set_text(texte);
  set_visible(!texte.empty());
}

void TexteReplie::measure_vfunc(Gtk::Orientation sens, int, int& minimum, int& naturel, int& ligneMinimale,
                                int& ligneNaturelle) const {
  ligneMinimale = ligneNaturelle = -1;
  if (sens == Gtk::Orientation::HORIZONTAL) {
    minimum = naturel = largeur_;
    return;
  }
  int ignoree = -1;
  label_.measure(sens, largeur_, minimum, naturel, ignoree, ignoree);
}

void TexteReplie::size_allocate_vfunc(int largeur, int hauteur, int ligne) {
  label_.size_allocate({0, 0, largeur, hauteur}, ligne);
}

} // namespace keltrove::bureau
