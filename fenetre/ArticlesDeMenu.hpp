// ArticlesDeMenu : de quoi une barre de menus est faite, quel que soit le bureau qui la dessine. Des valeurs,
// sans état ; la table elle-même est dans Menus.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace keltrove::fenetre::Menus {

// Les actions portent le nom que la plate-forme d’origine leur donne (« undo » pour « undo: ») : un
// bureau AppKit les envoie telles quelles, un autre en fait des actions du même nom. Seule
// « rechargerVraiment » est à nous.
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

// Celui qui a le clavier et, à défaut, sa fenêtre puis l’application ; ou la fenêtre de keltrove elle-même,
// que l’observateur de la vue prévient.
enum class Cible { premierRepondeur, fenetrePrincipale };

// Son nom, tel qu’écrit ci-dessus.
const char* nomDe(Action action);

// Au sens de macOS. Un bureau sans touche Commande choisit la sienne : GTK prend Ctrl+Maj, qui laisse
// Ctrl+lettre à l’interpréteur.
struct Modificateurs {
  bool maj = false;
  bool option = false;
  bool controle = false;
  bool commande = true;
  bool operator==(const Modificateurs&) const = default;
};

// Une touche de lettre ; la majuscule est dans les modificateurs.
struct Raccourci {
  char lettre; // minuscule
  Modificateurs modificateurs{};
  bool operator==(const Raccourci&) const = default;
};

struct Separateur {
  bool operator==(const Separateur&) const = default;
};

// Une action que le bureau ne sait pas faire se montre grisée.
struct Article {
  std::string titre;
  std::optional<Raccourci> raccourci;
  Action action;
  Cible cible = Cible::premierRepondeur;
  bool operator==(const Article&) const = default;
};

// Ce que certains systèmes demandent de savoir d’un menu : celui de l’application, qu’ils nomment à leur
// façon, et celui où ils ajoutent les fenêtres ouvertes.
enum class Role { ordinaire, application, fenetres };

// Les articles, de haut en bas ; ni séparateur au bout, ni sous-menu.
struct Menu {
  std::string titre; // vide pour celui de l’application
  std::vector<std::variant<Article, Separateur>> articles;
  Role role = Role::ordinaire;
};

} // namespace keltrove::fenetre::Menus
