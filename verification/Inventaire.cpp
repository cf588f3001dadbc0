#include "verification/Inventaire.hpp"

#include <nlohmann/json.hpp>

namespace keltrove::verification {

std::optional<Inventaire> lireInventaire(std::string_view octets) {
  // La bibliothèque prendrait un octet nul pour la fin du texte ; le JSON n’en admet nulle part.
  if (octets.find('\0') != std::string_view::npos) return std::nullopt;
  const auto json = nlohmann::json::parse(octets, nullptr, /* exceptions */ false);
  if (!json.is_object()) return std::nullopt;
  const auto fichiers = json.find("fichiers");
  if (fichiers == json.end() || !fichiers->is_object()) return std::nullopt;
  Inventaire inventaire;
  for (const auto& [chemin, empreinte] : fichiers->items()) {
    if (!empreinte.is_string()) return std::nullopt;
    inventaire.emplace_hint(inventaire.end(), chemin, empreinte.get_ref<const std::string&>());
  }
  return inventaire;
}

} // namespace keltrove::verification
