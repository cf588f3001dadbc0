// JSON : un texte venu d’un fichier ou du réseau, lu à la lettre.
#pragma once

#include <optional>
#include <string_view>

#include <nlohmann/json.hpp>

namespace keltrove::socle {

// Rien si ce n’est pas un texte JSON en entier, en UTF-8 : ni commentaire, ni virgule de trop, ni suite. La
// bibliothèque prendrait un octet nul pour la fin du texte, et sauterait une marque d’ordre des octets : le
// JSON n’admet ni l’un ni l’autre. D’une clé répétée, la dernière valeur compte. Ne lève rien ; sans état,
// utilisable depuis tout fil.
std::optional<nlohmann::json> lireJSON(std::string_view octets);

} // namespace keltrove::socle
