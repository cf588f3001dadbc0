// Ce que la page de serveur.mjs entendrait d’une expression que l’application lui fait évaluer, d’un appel
// qu’elle lui fait ; rien de ce que la table ne dit pas.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace keltrove::essais {

inline std::optional<std::string> entendu(const std::string& expression) {
  constexpr std::string_view debut = "window.keltrovePont && window.keltrovePont.";
  if (!expression.starts_with(debut)) return std::nullopt;
  auto appel = expression.substr(debut.size(), expression.rfind(';') - debut.size());
  for (std::size_t ou = 0; (ou = appel.find("\\/", ou)) != std::string::npos;)
    appel.erase(ou, 1);
  return appel;
}

inline std::string entendu(std::string_view corps, const nlohmann::json& arguments) {
  if (corps.contains("keltroveDeposerChemins"))
    return "depot(" + arguments["chemins"].dump() + ", " + arguments["x"].dump() + ", " +
           arguments["y"].dump() + ")";
  if (arguments.empty()) return "survol(null, null)";
  return "survol(" + arguments["x"].dump() + ", " + arguments["y"].dump() + ")";
}

} // namespace keltrove::essais
