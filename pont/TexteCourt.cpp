#include "pont/TexteCourt.hpp"

#include "socle/Texte.hpp"

#include <nlohmann/json.hpp>

namespace keltrove::pont {

std::string texteCourt(const nlohmann::json& valeur, const std::string& parDefaut, std::size_t maximum) {
  if (!valeur.is_string()) return parDefaut;
  const auto texte = socle::rogner(valeur.get_ref<const std::string&>());
  if (texte.empty()) return parDefaut;
  if (socle::premiersCaracteres(texte, maximum).size() == texte.size()) return std::string(texte);
  return std::string(socle::premiersCaracteres(texte, maximum - 1)) + "…";
}

} // namespace keltrove::pont
