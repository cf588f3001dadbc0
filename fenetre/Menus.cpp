#include "fenetre/Menus.hpp"

#include "fenetre/FenetrePrincipale.hpp"

namespace keltrove::fenetre::Menus {

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
       }},
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
       }},
  };
  return menus;
}

void installer(VueFenetre& vue, FenetrePrincipale& cible) {
  vue.quandOnRecharge = [&cible] { cible.rechargerVraiment(); };
  vue.poserLesMenus(barre());
}

} // namespace keltrove::fenetre::Menus
