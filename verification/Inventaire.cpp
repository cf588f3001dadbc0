#include "verification/Inventaire.hpp"

#include "socle/JSON.hpp"

namespace keltrove::verification {

std::optional<Inventaire> lireInventaire(std::string_view octets) {
  // Un éditeur peut l’avoir laissée ; elle est signée avec le reste.
  constexpr std::string_view marqueDOrdre = "\xEF\xBB\xBF";
  if (octets.starts_with(marqueDOrdre)) octets.remove_prefix(marqueDOrdre.size());
  const auto json = socle::lireJSON(octets);
  if (!json || !json->is_object()) return std::nullopt;
  const auto fichiers = json->find("fichiers");
  if (fichiers == json->end() || !fichiers->is_object()) return std::nullopt;
  Inventaire inventaire;
  for (const auto& [chemin, empreinte] : fichiers->items()) {
    if (!empreinte.is_string()) return std::nullopt;
    inventaire.emplace_hint(inventaire.end(), chemin, empreinte.get_ref<const std::string&>());
  }
  return inventaire;
}

} // namespace keltrove::verification
