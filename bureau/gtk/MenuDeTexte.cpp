#include "bureau/gtk/MenuDeTexte.hpp"

#include "bureau/gtk/FlechesDeMenu.hpp"
#include "bureau/gtk/TextesDeGtk.hpp"
#include "fenetre/Apparence.hpp"
#include "fenetre/Menus.hpp"

#include <gdk/gdk.h>
#include <giomm/menu.h>
#include <gtkmm/gestureclick.h>
#include <gtkmm/shortcut.h>
#include <gtkmm/shortcutaction.h>
#include <gtkmm/shortcutcontroller.h>
#include <gtkmm/shortcuttrigger.h>

namespace keltrove::bureau {

namespace Menus = fenetre::Menus;

namespace {

Glib::RefPtr<Gio::Menu> articles() {
  const auto menu = Gio::Menu::create();
  menu->append(Menus::titreDe(Menus::Action::copy), "clipboard.copy");
  menu->append(Menus::titreDe(Menus::Action::selectAll), "selection.select-all");
  return menu;
}

} // namespace

MenuDeTexte::MenuDeTexte(Gtk::TextView& texte) : texte_(texte), volet_(articles()) {
  volet_.set_parent(texte_);
  volet_.set_has_arrow(false);
  volet_.set_halign(Gtk::Align::START);
  volet_.signal_show().connect([this] { nommerLesArticles(volet_); });
  volet_.signal_closed().connect([this] { texte_.grab_focus(); });
  nommerLeMenu(volet_, fenetre::Apparence::Noms::menuDUnTexte);
  retenirLesFleches(volet_);
  ouvrirALaSouris();
  ouvrirAuClavier();
}

MenuDeTexte::~MenuDeTexte() {
  volet_.unparent();
}

// Avant le texte, qui ouvrirait le sien.
void MenuDeTexte::ouvrirALaSouris() {
  const auto clic = Gtk::GestureClick::create();
  clic->set_button(GDK_BUTTON_SECONDARY);
  clic->set_propagation_phase(Gtk::PropagationPhase::CAPTURE);
  clic->signal_pressed().connect([this, geste = clic.get()](int, double x, double y) {
    geste->set_state(Gtk::EventSequenceState::CLAIMED);
    ouvrir(static_cast<int>(x), static_cast<int>(y));
  });
  texte_.add_controller(clic);
}

void MenuDeTexte::ouvrirAuClavier() {
  const auto raccourcis = Gtk::ShortcutController::create();
  raccourcis->set_propagation_phase(Gtk::PropagationPhase::CAPTURE);
  raccourcis->add_shortcut(
      Gtk::Shortcut::create(Gtk::ShortcutTrigger::parse_string("Menu|<Shift>F10"),
                            Gtk::CallbackAction::create([this](Gtk::Widget&, const Glib::VariantBase&) {
                              ouvrir(0, 0);
                              return true;
                            })));
  texte_.add_controller(raccourcis);
}

void MenuDeTexte::ouvrir(int x, int y) {
  // GTK ne la grise que pour son propre menu.
  gtk_widget_action_set_enabled(GTK_WIDGET(texte_.gobj()), "clipboard.copy",
                                texte_.get_buffer()->get_has_selection());
  volet_.set_pointing_to({x, y, 1, 1});
  volet_.popup();
}

} // namespace keltrove::bureau
