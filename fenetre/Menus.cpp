#include "fenetre/Menus.hpp"

namespace keltrove::fenetre::Menus {

const char* nomDe(Action action) {
  using enum Action;
  switch (action) {
  case orderFrontStandardAboutPanel:
    return "orderFrontStandardAboutPanel";
  case hide:
    return "hide";
  case hideOtherApplications:
    return "hideOtherApplications";
  case unhideAllApplications:
    return "unhideAllApplications";
  case terminate:
    return "terminate";
  case undo:
    return "undo";
  case redo:
    return "redo";
  case cut:
    return "cut";
  case copy:
    return "copy";
  case paste:
    return "paste";
  case pasteAsPlainText:
    return "pasteAsPlainText";
  case selectAll:
    return "selectAll";
  case rechargerVraiment:
    return "rechargerVraiment";
  case toggleFullScreen:
    return "toggleFullScreen";
  case performMiniaturize:
    return "performMiniaturize";
  case performClose:
    return "performClose";
  case arrangeInFront:
    return "arrangeInFront";
  }
  return "";
}

const std::vector<Menu>& barre() {
  static const std::vector<Menu> menus{
      {"",
       {
           Article{"À propos de Keltrove", {}, Action::orderFrontStandardAboutPanel},
           Separateur{},
           Article{"Masquer Keltrove", Raccourci{'h'}, Action::hide},
           Article{"Masquer les autres", Raccourci{'h', {.option = true}}, Action::hideOtherApplications},
           Article{"Tout afficher", {}, Action::unhideAllApplications},
           Separateur{},
           Article{"Quitter Keltrove", Raccourci{'q'}, Action::terminate},
       },
       Role::application},
      {"Édition",
       {
           Article{"Annuler", Raccourci{'z'}, Action::undo},
           Article{"Rétablir", Raccourci{'z', {.maj = true}}, Action::redo},
           Separateur{},
           Article{"Couper", Raccourci{'x'}, Action::cut},
           Article{"Copier", Raccourci{'c'}, Action::copy},
           Article{"Coller", Raccourci{'v'}, Action::paste},
           Article{"Coller sans la mise en forme", Raccourci{'v', {.maj = true, .option = true}},
                   Action::pasteAsPlainText},
           Article{"Tout sélectionner", Raccourci{'a'}, Action::selectAll},
       }},
      {"Présentation",
       {
           Article{"Recharger la page", Raccourci{'r'}, Action::rechargerVraiment, Cible::fenetrePrincipale},
           Separateur{},
           Article{"Activer le plein écran", Raccourci{'f', {.controle = true}}, Action::toggleFullScreen},
       }},
      {"Fenêtre",
       {
           Article{"Réduire", Raccourci{'m'}, Action::performMiniaturize},
           Article{"Fermer", Raccourci{'w'}, Action::performClose},
           Separateur{},
           Article{"Tout ramener au premier plan", {}, Action::arrangeInFront},
       },
       Role::fenetres},
  };
  return menus;
}

std::string titreDe(Action action) {
  for (const auto& menu : barre())
    for (const auto& ligne : menu.articles)
      if (const auto* article = std::get_if<Article>(&ligne); article != nullptr && article->action == action)
        return article->titre;
  return "";
}

void installer(VueFenetre& vue) {
  vue.poserLesMenus(barre());
}

} // namespace keltrove::fenetre::Menus
