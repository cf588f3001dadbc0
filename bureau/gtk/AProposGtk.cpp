#include "bureau/gtk/AProposGtk.hpp"

#include "fenetre/APropos.hpp"

#include <gdk/gdkkeysyms.h>
#include <gtkmm/eventcontrollerkey.h>
#include <gtkmm/icontheme.h>

namespace keltrove::bureau {

namespace APropos = fenetre::APropos;

namespace {

constexpr int marge = 28;
constexpr int espacement = 10;
constexpr int tailleDeLIcone = 72;
constexpr int largeurDuTexte = 42; // en caractères

} // namespace

AProposGtk::AProposGtk(Gtk::Window& parente)
    : pile_(Gtk::Orientation::VERTICAL, espacement), nom_(APropos::nom), version_(APropos::version),
      objet_(APropos::objet), licence_(APropos::licence), fermer_("Fermer") {
  set_title("À propos de Keltrove");
  set_transient_for(parente);
  set_modal(true);
  set_resizable(false);
  set_hide_on_close(true);
  icone_.set_from_icon_name(KELTROVE_IDENTIFIANT);
  icone_.set_visible(Gtk::IconTheme::get_for_display(get_display())->has_icon(KELTROVE_IDENTIFIANT));
  icone_.set_pixel_size(tailleDeLIcone);
  nom_.add_css_class("title-1");
  version_.add_css_class("dim-label");
  for (auto* texte : {&objet_, &licence_}) {
    texte->set_wrap(true);
    texte->set_max_width_chars(largeurDuTexte);
    texte->set_justify(Gtk::Justification::CENTER);
  }
  licence_.add_css_class("caption");
  fermer_.set_halign(Gtk::Align::CENTER);
  fermer_.set_margin_top(espacement);
  fermer_.signal_clicked().connect([this] { close(); });
  for (auto* element :
       std::initializer_list<Gtk::Widget*>{&icone_, &nom_, &version_, &objet_, &licence_, &fermer_})
    pile_.append(*element);
  pile_.set_margin(marge);
  set_child(pile_);
  set_default_widget(fermer_);
  fermer_.grab_focus();
  fermerSurEchap();
}

void AProposGtk::fermerSurEchap() {
  const auto touches = Gtk::EventControllerKey::create();
  touches->signal_key_pressed().connect(
      [this](guint touche, guint, Gdk::ModifierType) {
        if (touche != GDK_KEY_Escape) return false;
        close();
        return true;
      },
      false);
  add_controller(touches);
}

} // namespace keltrove::bureau
