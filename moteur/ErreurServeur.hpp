// ErreurServeur et ResultatDemarrage : comment un démarrage s’est terminé.
//
// Des valeurs, et les textes français qui les expliquent à quelqu’un qui n’est pas développeur.
#pragma once

#include <expected>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace keltrove::moteur {

// Un serveur de ce produit répondait déjà : rien n’a été lancé.
struct Rattache {
  int port = 0;
  bool operator==(const Rattache&) const = default;
};
// L’application a lancé le serveur, qui répond.
struct Allume {
  int port = 0;
  bool operator==(const Allume&) const = default;
};
using ResultatDemarrage = std::variant<Rattache, Allume>;

struct CodeIntrouvable {
  std::vector<std::string> essayes; // dans l’ordre de la recherche
  bool operator==(const CodeIntrouvable&) const = default;
};
struct LancementImpossible {
  std::string raison; // le texte du système
  bool operator==(const LancementImpossible&) const = default;
};
struct MortAuDemarrage {
  std::string journal; // ce que le serveur a écrit
  bool operator==(const MortAuDemarrage&) const = default;
};
struct PasDeReponse {
  int port = 0;
  int secondes = 0;
  std::string journal;
  bool operator==(const PasDeReponse&) const = default;
};
struct PerduEnRoute {
  std::string journal;
  bool operator==(const PerduEnRoute&) const = default;
};
struct NodeIntrouvable {
  bool operator==(const NodeIntrouvable&) const = default;
};
struct CodeModifie {
  bool operator==(const CodeModifie&) const = default;
};
using ErreurServeur = std::variant<CodeIntrouvable, LancementImpossible, MortAuDemarrage, PasDeReponse,
                                   PerduEnRoute, NodeIntrouvable, CodeModifie>;

using Demarrage = std::expected<ResultatDemarrage, ErreurServeur>;

// Le titre d’un écran et la cause notée au journal : le même texte.
std::string titreCourt(const ErreurServeur& erreur);

std::string explication(const ErreurServeur& erreur);

// Ce que l’utilisateur peut faire.
std::string conseil(const ErreurServeur& erreur);

// La sortie du serveur que l’erreur porte ; rien si elle est vide ou si l’erreur n’en porte pas.
std::optional<std::string> journal(const ErreurServeur& erreur);

} // namespace keltrove::moteur
