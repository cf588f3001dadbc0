#include "fenetre/PourLaPage.hpp"

#include <nlohmann/json.hpp>

namespace keltrove::fenetre::PourLaPage {

Appel appel(const char* corps, const nlohmann::json& arguments) {
  std::string noms;
  for (const auto& [nom, valeur] : arguments.items())
    noms += nom + ", ";
  return {.fonction = "const { " + noms + "} = JSON.parse(keltroveArguments); " + corps,
          .arguments = arguments.dump()};
}

} // namespace keltrove::fenetre::PourLaPage
