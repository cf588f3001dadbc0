#include "socle/JSON.hpp"

namespace keltrove::socle {

std::optional<nlohmann::json> lireJSON(std::string_view octets) {
  if (octets.contains('\0') || octets.starts_with("\xEF\xBB\xBF")) return std::nullopt;
  auto json = nlohmann::json::parse(octets, nullptr, /* exceptions */ false);
  if (json.is_discarded()) return std::nullopt;
  return json;
}

} // namespace keltrove::socle
