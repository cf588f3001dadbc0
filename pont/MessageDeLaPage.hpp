// MessageDeLaPage : ce que la page a écrit à l’application, une fois lu.
//
// Chaque bureau le tire de ce que sa vue web lui donne. La page n’est pas crue pour autant : un cadre
// d’ailleurs peut écrire lui aussi, et rien dans la valeur ne le dit. Sans état : utilisable depuis tout fil.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <variant>

namespace keltrove::pont {

// Ni un texte ni un objet, ou pas de JSON.
struct Illisible {
  bool operator==(const Illisible&) const = default;
};
// Un objet, quoi qu’il contienne d’autre : de lui, seuls comptent les membres qui sont des textes.
struct ObjetDeLaPage {
  std::map<std::string, std::string> textes; // en UTF-8
  std::string forme;                         // l’objet entier, écrit pour qui met au point
  bool operator==(const ObjetDeLaPage&) const = default;

  // Rien si ce membre manque ou n’est pas un texte.
  std::optional<std::string> texte(const std::string& nom) const;
};
// Un texte seul est son propre message.
using MessageDeLaPage = std::variant<Illisible, std::string, ObjetDeLaPage>;

// Pour un bureau dont la vue web écrit le message en JSON, et n’en écrit pas s’il n’en a pas. Une moitié de
// caractère, qu’une page laisse en coupant un texte au milieu d’un emoji, devient U+FFFD.
MessageDeLaPage lireLeMessage(const std::optional<std::string>& json);

} // namespace keltrove::pont
