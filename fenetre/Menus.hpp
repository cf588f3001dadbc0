// Menus : la barre de menus, en français.
//
// Une table, que chaque bureau traduit dans ses propres menus et raccourcis sans rien y ajouter. Elle ne
// change plus une fois posée. Fil principal seulement.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace keltrove::fenetre {

class FenetrePrincipale;
class VueFenetre;

namespace Menus {

// Les actions portent le nom que la plate-forme d’origine leur donne (« undo » pour « undo: »).
enum class Action {
  orderFrontStandardAboutPanel,
  hide,
  hideOtherApplications,
  unhideAllApplications,
  terminate,
  undo,
  redo,
  cut,
  copy,
  paste,
  pasteAsPlainText,
  selectAll,
  rechargerVraiment,
  toggleFullScreen,
  performMiniaturize,
  performClose,
  arrangeInFront,
};

// Celui qui a le clavier et, à défaut, sa fenêtre puis l’application ; ou la fenêtre de keltrove elle-même.
enum class Cible { premierRepondeur, fenetrePrincipale };

struct Modificateurs {
  bool maj = false;
  bool option = false;
  bool controle = false;
  bool commande = true;
  bool operator==(const Modificateurs&) const = default;
};

struct Raccourci {
  char lettre; // minuscule
  Modificateurs modificateurs{};
  bool operator==(const Raccourci&) const = default;
};

struct Separateur {
  bool operator==(const Separateur&) const = default;
};

struct Article {
  std::string titre;
  std::optional<Raccourci> raccourci;
  Action action;
  Cible cible = Cible::premierRepondeur;
  bool operator==(const Article&) const = default;
};

struct Menu {
  std::string titre; // vide pour le menu de l’application, que chaque bureau nomme à sa façon
  std::vector<std::variant<Article, Separateur>> articles;
};

// Les menus, de gauche à droite.
const std::vector<Menu>& barre();

// Pose la barre sur la vue. « Recharger la page » ne recharge rien d’elle-même : elle demande un nouvel essai
// à `cible`, qui doit survivre à la vue ou à son prochain installer.
void installer(VueFenetre& vue, FenetrePrincipale& cible);

} // namespace Menus
} // namespace keltrove::fenetre
