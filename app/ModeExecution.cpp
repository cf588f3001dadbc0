#include "app/ModeExecution.hpp"

namespace keltrove::app {

ModeExecution choisirLeMode(const std::vector<std::string>& arguments,
                            const std::optional<std::string>& cleDeLEnvironnement) {
  if (arguments.size() < 2 || arguments[1] != "verifier-inventaire") return ModeBureau{};
  return ModeVerification{
      .dossier = arguments.size() > 2 ? arguments[2] : "",
      .cheminCle = arguments.size() > 3 ? arguments[3] : cleDeLEnvironnement.value_or(""),
  };
}

} // namespace keltrove::app
