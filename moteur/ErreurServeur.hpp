// ErreurServeur et ResultatDemarrage : comment un démarrage s’est terminé.
//
// Des valeurs, et les textes français qui les expliquent à quelqu’un qui n’est pas développeur.
// Sommes closes : un nouveau cas ne se compile qu’une fois tous ses textes écrits. Sans état :
// utilisable depuis tout fil.
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

// Node est là, mais pas de serveur à lui donner.
struct CodeIntrouvable {
  std::vector<std::string> essayes; // dans l’ordre de la recherche
  bool operator==(const CodeIntrouvable&) const = default;
};
// Le système n’a pas lancé le programme, n’a plus de fil pour l’attendre, ou l’application se ferme.
struct LancementImpossible {
  std::string raison; // le texte du système, dans la langue du processus
  bool operator==(const LancementImpossible&) const = default;
};
// Lancé, il a fini avant d’avoir répondu, et personne d’autre ne répond à sa place.
struct MortAuDemarrage {
  std::string journal; // ce que le serveur a écrit
  bool operator==(const MortAuDemarrage&) const = default;
};
// Lancé, il vit toujours, et n’a pas répondu dans le délai. Il continue de tourner : le prochain essai
// peut s’y rattacher.
struct PasDeReponse {
  int port = 0;
  int secondes = 0;
  std::string journal;
  bool operator==(const PasDeReponse&) const = default;
};
// Il répondait, et il a fini sans que nous l’ayons demandé.
struct PerduEnRoute {
  std::string journal;
  bool operator==(const PerduEnRoute&) const = default;
};
// Aucun Node aux endroits convenus ; le PATH n’est pas parcouru.
struct NodeIntrouvable {
  bool operator==(const NodeIntrouvable&) const = default;
};
// Le script de démarrage a refusé cette copie : une ligne de sa sortie contient « MODIFIE= ».
struct CodeModifie {
  bool operator==(const CodeModifie&) const = default;
};
using ErreurServeur = std::variant<CodeIntrouvable, LancementImpossible, MortAuDemarrage, PasDeReponse,
                                   PerduEnRoute, NodeIntrouvable, CodeModifie>;

using Demarrage = std::expected<ResultatDemarrage, ErreurServeur>;

// Le titre d’un écran et la cause notée au journal : le même texte.
std::string titreCourt(const ErreurServeur& erreur);

// Ce qui s’est passé, en une ou deux phrases ; plusieurs lignes quand elle cite des chemins.
std::string explication(const ErreurServeur& erreur);

// Ce que l’utilisateur peut faire.
std::string conseil(const ErreurServeur& erreur);

// La sortie du serveur que l’erreur porte ; rien si elle est vide ou si l’erreur n’en porte pas.
std::optional<std::string> journal(const ErreurServeur& erreur);

} // namespace keltrove::moteur
