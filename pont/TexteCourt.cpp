#include "pont/TexteCourt.hpp"

#include "socle/Texte.hpp"

namespace keltrove::pont {

std::string texteCourt(const std::optional<std::string>& valeur, const std::string& parDefaut,
                       std::size_t maximum) {
  if (!valeur) return parDefaut;
  const auto texte = socle::rogner(*valeur);
  if (texte.empty()) return parDefaut;
  if (socle::premiersCaracteres(texte, maximum).size() == texte.size()) return std::string(texte);
  return std::string(socle::premiersCaracteres(texte, maximum - 1)) + "…";
}

} // namespace keltrove::pont
