#include "bureau/gtk/MenusGtk.hpp"

#include "bureau/gtk/FlechesDeMenu.hpp"
#include "bureau/gtk/TextesDeGtk.hpp"
#include "fenetre/Apparence.hpp"

#include <algorithm>
#include <map>

#include <glibmm/main.h>
#include <gtkmm/popover.h>
#include <gtkmm/shortcut.h>
#include <gtkmm/shortcutaction.h>
#include <gtkmm/shortcutcontroller.h>
#include <gtkmm/shortcuttrigger.h>

namespace keltrove::bureau {

namespace Menus = fenetre::Menus;

namespace {

std::string accelerateurDe(const Menus::Raccourci& raccourci) {
  const auto& [maj, option, controle, commande] = raccourci.modificateurs;
  if (controle) return "F11"; // le plein écran, sous le nom que les bureaux de Linux lui donnent
  if (option) return std::string("<Control><Shift><Alt>") + raccourci.lettre;
  // Maj est déjà prise : « Rétablir » a sa lettre à lui.
  return std::string("<Control><Shift>") + (maj && raccourci.lettre == 'z' ? 'y' : raccourci.lettre);
}

Touches touchesDe(const Menus::Raccourci& raccourci) {
  const auto accelerateur = accelerateurDe(raccourci);
  if (raccourci.modificateurs.controle) return {.ecrites = accelerateur, .dites = accelerateur};
  const auto fin =
      Glib::ustring(raccourci.modificateurs.option ? "Alt+" : "") + Glib::Ascii::toupper(accelerateur.back());
  return {.ecrites = "Ctrl+Maj+" + fin, .dites = "Control+Shift+" + fin};
}

std::map<Glib::ustring, Touches> touchesDe(const Menus::Menu& menu) {
  std::map<Glib::ustring, Touches> touches;
  for (const auto& ligne : menu.articles)
    if (const auto* article = std::get_if<Menus::Article>(&ligne); article != nullptr && article->raccourci)
      touches[article->titre] = touchesDe(*article->raccourci);
  return touches;
}

Glib::ustring titreDe(const Menus::Menu& menu) {
  return menu.role == Menus::Role::application ? fenetre::Apparence::nomDeLApplication : menu.titre;
}

Glib::RefPtr<Gio::Menu> traduire(const Menus::Menu& menu, Gtk::Application& application) {
  const auto articles = Gio::Menu::create();
  auto section = Gio::Menu::create();
  for (const auto& ligne : menu.articles) {
    const auto* article = std::get_if<Menus::Article>(&ligne);
    if (article == nullptr) {
      articles->append_section(section);
      section = Gio::Menu::create();
      continue;
    }
    const auto action = std::string("win.") + Menus::nomDe(article->action);
    section->append(article->titre, action);
    if (article->raccourci) application.set_accel_for_action(action, accelerateurDe(*article->raccourci));
  }
  articles->append_section(section);
  return articles;
}

} // namespace

MenusGtk::MenusGtk(Gtk::Window& fenetre) : fenetre_(fenetre) {
  gtk_window_set_handle_menubar_accel(fenetre_.gobj(), FALSE);
  nommer(barre_, fenetre::Apparence::Noms::menus);
  ouvrirAuClavier();
  suivreLeFocus();
}

void MenusGtk::poser(const std::vector<Menus::Menu>& menus, Gtk::Application& application) {
  for (const auto& menu : menus)
    modele_->append_submenu(titreDe(menu), traduire(menu, application));
  suivreLOuverture(menus);
}

void MenusGtk::suivreLeFocus() {
  fenetre_.property_focus_widget().signal_changed().connect([this] {
    auto* focus = fenetre_.get_focus();
    // Le clavier passe par personne en allant d’un menu à l’autre.
    if (focus != nullptr && !focus->is_ancestor(barre_)) dernierFocus_ = focus;
  });
}

void MenusGtk::suivreLOuverture(const std::vector<Menus::Menu>& menus) {
  auto menu = menus.begin();
  for (auto* titre = barre_.get_first_child(); titre != nullptr; titre = titre->get_next_sibling(), ++menu)
    for (auto* volet = titre->get_first_child(); volet != nullptr; volet = volet->get_next_sibling()) {
      auto* popover = dynamic_cast<Gtk::Popover*>(volet);
      if (popover == nullptr) continue;
      volets_.push_back(popover);
      nommerLeMenu(*popover, titreDe(*menu));
      retenirLesFleches(*popover);
      // GTK n’écrit les touches d’un article qu’une fois son menu relié à l’application.
      popover->signal_show().connect([this, popover, touches = touchesDe(*menu)] {
        ecrireLesTouches(*popover, touches);
        nommerLesArticles(*popover);
        if (quandUnMenuSOuvre) quandUnMenuSOuvre();
      });
      // L’action choisie s’exécute après la fermeture, et passer d’un menu au voisin en ferme un aussi.
      popover->signal_closed().connect(
          [this] { Glib::signal_idle().connect_once([this] { rendreLeClavier(); }); });
    }
}

void MenusGtk::rendreLeClavier() {
  if (std::ranges::any_of(volets_, [](auto* volet) { return volet->get_visible(); })) return;
  auto* focus = fenetre_.get_focus();
  if (dernierFocus_ != nullptr && (focus == nullptr || focus->is_ancestor(barre_)))
    dernierFocus_->grab_focus();
  if (quandLesMenusSeFerment) quandLesMenusSeFerment();
}

void MenusGtk::ouvrirAuClavier() {
  const auto raccourcis = Gtk::ShortcutController::create();
  raccourcis->set_propagation_phase(Gtk::PropagationPhase::CAPTURE);
  raccourcis->add_shortcut(
      Gtk::Shortcut::create(Gtk::ShortcutTrigger::parse_string("<Control><Shift>F10"),
                            Gtk::CallbackAction::create([this](Gtk::Widget&, const Glib::VariantBase&) {
                              auto* premier = barre_.get_first_child();
                              return premier != nullptr && premier->grab_focus() && premier->activate();
                            })));
  fenetre_.add_controller(raccourcis);
}

} // namespace keltrove::bureau
