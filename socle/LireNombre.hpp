// LireNombre : un entier écrit en chiffres, et rien d’autre.
//
// Rien si le texte contient le moindre caractère de plus, ou si sa valeur ne tient pas dans `Nombre`.
#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace keltrove::socle {

template <typename Nombre>
std::optional<Nombre> lireNombre(std::string_view texte, int base = 10) {
  Nombre valeur{};
  const auto [fin, erreur] = std::from_chars(texte.data(), texte.data() + texte.size(), valeur, base);
  if (erreur != std::errc{} || fin != texte.data() + texte.size()) return std::nullopt;
  return valeur;
}

} // namespace keltrove::socle
