#include "pont/MessageDeLaPage.hpp"

#include "socle/LireNombre.hpp"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include <nlohmann/json.hpp>

namespace keltrove::pont {
namespace {

constexpr std::size_t longueurDUnite = 6; // \uXXXX

// L’unité UTF-16 que ce JSON échappe ici ; 0 si ce n’en est pas une.
std::uint32_t uniteEn(std::string_view json, std::size_t i) {
  const auto unite = json.substr(std::min(i, json.size()), longueurDUnite);
  if (unite.size() < longueurDUnite || !unite.starts_with("\\u")) return 0;
  return socle::lireNombre<std::uint32_t>(unite.substr(2), 16).value_or(0);
}

bool estMoitieHaute(std::uint32_t unite) {
  return unite >= 0xD800 && unite <= 0xDBFF;
}
bool estMoitieBasse(std::uint32_t unite) {
  return unite >= 0xDC00 && unite <= 0xDFFF;
}

std::string sansMoitieSeule(std::string_view json) {
  std::string propre;
  propre.reserve(json.size());
  for (std::size_t i = 0; i < json.size();) {
    std::size_t longueur = json[i] == '\\' ? 2 : 1;
    const auto unite = uniteEn(json, i);
    if (estMoitieHaute(unite) && estMoitieBasse(uniteEn(json, i + longueurDUnite)))
      longueur = 2 * longueurDUnite;
    else if (estMoitieHaute(unite) || estMoitieBasse(unite)) {
      propre += "\\ufffd";
      i += longueurDUnite;
      continue;
    }
    propre += json.substr(i, longueur);
    i += longueur;
  }
  return propre;
}

} // namespace

std::optional<std::string> ObjetDeLaPage::texte(const std::string& nom) const {
  const auto trouve = textes.find(nom);
  return trouve != textes.end() ? std::optional(trouve->second) : std::nullopt;
}

MessageDeLaPage lireLeMessage(const std::optional<std::string>& json) {
  if (!json) return Illisible{};
  const auto lu = nlohmann::json::parse(sansMoitieSeule(*json), nullptr, /* exceptions */ false);
  if (lu.is_string()) return lu.get<std::string>();
  if (!lu.is_object()) return Illisible{};
  ObjetDeLaPage objet{.textes = {}, .forme = *json};
  for (const auto& [nom, valeur] : lu.items())
    if (valeur.is_string()) objet.textes[nom] = valeur.get<std::string>();
  return objet;
}

} // namespace keltrove::pont
