// LireNombre : un entier écrit en chiffres, et rien d’autre.
//
// Rien si le texte est vide, s’il contient le moindre caractère de plus (blanc, « + », « 0x »…), ou si sa
// valeur ne tient pas dans `Nombre`. Un signe moins n’est lu que pour un type signé. Sans état : ni la langue
// du processus ni le fil n’y changent rien.
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
