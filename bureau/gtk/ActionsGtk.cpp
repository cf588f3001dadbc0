#include "bureau/gtk/ActionsGtk.hpp"

#include <array>
#include <string_view>

#include <gdkmm/clipboard.h>
#include <gdkmm/contentformats.h>
#include <giomm/simpleaction.h>
#include <gtkmm/textview.h>

namespace keltrove::bureau {

namespace Menus = fenetre::Menus;
using Menus::Action;

// Une action d’édition, sous le nom que WebKit et les éléments de GTK lui donnent.
struct Edition {
  Action action;
  const char* commande;
  const char* actionGtk;
  bool colle = false;
};

namespace {

constexpr std::array editions{
    Edition{Action::undo, WEBKIT_EDITING_COMMAND_UNDO, "text.undo"},
    Edition{Action::redo, WEBKIT_EDITING_COMMAND_REDO, "text.redo"},
    Edition{Action::cut, WEBKIT_EDITING_COMMAND_CUT, "clipboard.cut"},
    Edition{Action::copy, WEBKIT_EDITING_COMMAND_COPY, "clipboard.copy"},
    Edition{Action::paste, WEBKIT_EDITING_COMMAND_PASTE, "clipboard.paste", true},
    Edition{Action::pasteAsPlainText, WEBKIT_EDITING_COMMAND_PASTE_AS_PLAIN_TEXT, "clipboard.paste", true},
    Edition{Action::selectAll, WEBKIT_EDITING_COMMAND_SELECT_ALL, "selection.select-all"},
};

// Ce qu’un texte affiché hors de la page, le détail d’un problème, permet.
bool leTextePermet(Gtk::Widget* focus, Action action) {
  auto* texte = dynamic_cast<Gtk::TextView*>(focus);
  if (texte == nullptr) return false;
  return action == Action::selectAll || (action == Action::copy && texte->get_buffer()->get_has_selection());
}

} // namespace

ActionsGtk::ActionsGtk(Gtk::ApplicationWindow& fenetre, MenusGtk& menus, VueWeb& vueWeb, Effets effets)
    : fenetre_(fenetre), menus_(menus), vueWeb_(vueWeb), effets_(std::move(effets)) {
  ajouterCellesDeLaFenetre();
  for (const auto& edition : editions)
    fenetre_.add_action(Menus::nomDe(edition.action), [this, &edition] { editer(edition); });
  menus_.quandUnMenuSOuvre = [this] { valider(); };
  menus_.quandLesMenusSeFerment = [this] { toutPermettre(); };
}

void ActionsGtk::ajouterCellesDeLaFenetre() {
  const auto ajouter = [this](Action action, std::function<void()> faire) {
    fenetre_.add_action(Menus::nomDe(action), [faire = std::move(faire)] { faire(); });
  };
  ajouter(Action::orderFrontStandardAboutPanel, [this] { montrerAPropos(); });
  ajouter(Action::hide, [this] { fenetre_.minimize(); });
  ajouter(Action::terminate, effets_.quitter);
  ajouter(Action::rechargerVraiment, effets_.recharger);
  ajouter(Action::toggleFullScreen, [this] {
    if (fenetre_.is_fullscreen())
      fenetre_.unfullscreen();
    else
      fenetre_.fullscreen();
  });
  ajouter(Action::performMiniaturize, [this] { fenetre_.minimize(); });
  ajouter(Action::performClose, [this] { fenetre_.close(); });
}

void ActionsGtk::editer(const Edition& edition) {
  // Un collage sans rien à coller effacerait la sélection.
  if (edition.colle && !ilYADeQuoiColler()) return;
  auto* focus = menus_.dernierFocus();
  if (focus == &vueWeb_.widget())
    vueWeb_.editer(edition.commande);
  else if (focus != nullptr)
    focus->activate_action(edition.actionGtk);
}

void ActionsGtk::valider() {
  menuOuvert_ = true;
  auto* focus = menus_.dernierFocus();
  for (const auto& edition : editions) {
    if (focus != &vueWeb_.widget()) {
      permettre(edition, leTextePermet(focus, edition.action));
      continue;
    }
    if (edition.colle && !ilYADeQuoiColler()) {
      permettre(edition, false);
      continue;
    }
    vueWeb_.siLEditionPeut(edition.commande, temoin_.garder([this, &edition](bool peut) {
      if (menuOuvert_) permettre(edition, peut);
    }));
  }
}

void ActionsGtk::toutPermettre() {
  menuOuvert_ = false;
  for (const auto& edition : editions)
    permettre(edition, true);
}

void ActionsGtk::permettre(const Edition& edition, bool oui) {
  const auto action = fenetre_.lookup_action(Menus::nomDe(edition.action));
  std::dynamic_pointer_cast<Gio::SimpleAction>(action)->set_enabled(oui);
}

bool ActionsGtk::ilYADeQuoiColler() const {
  return !fenetre_.get_clipboard()->get_formats()->get_mime_types().empty() ||
         !fenetre_.get_clipboard()->get_formats()->get_gtypes().empty();
}

void ActionsGtk::montrerAPropos() {
  if (!aPropos_) {
    aPropos_ = std::make_unique<AProposGtk>(fenetre_);
    effets_.boiteOuverte(*aPropos_);
  }
  aPropos_->present();
}

} // namespace keltrove::bureau
