#include "pont/EnJavaScript.hpp"

#include <nlohmann/json.hpp>

namespace keltrove::pont {

std::string enJavaScript(std::string_view texte) try {
  std::string litteral;
  // Hors de ses échappements, le JSON d’un texte n’a de barre oblique que celles du texte.
  for (const char c : nlohmann::json(texte).dump()) {
    if (c == '/') litteral += '\\';
    litteral += c;
  }
  return litteral;
} catch (const nlohmann::json::exception&) {
  return "\"\"";
}

} // namespace keltrove::pont
