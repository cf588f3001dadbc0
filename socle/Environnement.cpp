#include "socle/Environnement.hpp"

#include <algorithm>

namespace keltrove::socle {
namespace {

auto chercher(auto& entrees, std::string_view nom) {
  return std::ranges::find_if(entrees, [nom](const std::string& entree) {
    return entree.size() > nom.size() && entree[nom.size()] == '=' && entree.starts_with(nom);
  });
}

} // namespace

Environnement::Environnement(const char* const* variables) {
  for (; variables != nullptr && *variables != nullptr; ++variables) {
    const std::string_view entree = *variables;
    const auto egal = entree.find('=');
    if (egal == std::string_view::npos || egal == 0) continue;
    if (chercher(entrees_, entree.substr(0, egal)) == entrees_.end()) entrees_.emplace_back(entree);
  }
}

std::optional<std::string> Environnement::lire(std::string_view nom) const {
  const auto trouvee = chercher(entrees_, nom);
  if (trouvee == entrees_.end()) return std::nullopt;
  return trouvee->substr(nom.size() + 1);
}

void Environnement::definir(std::string_view nom, std::string_view valeur) {
  auto entree = std::string(nom) + "=" + std::string(valeur);
  const auto trouvee = chercher(entrees_, nom);
  if (trouvee == entrees_.end())
    entrees_.push_back(std::move(entree));
  else
    *trouvee = std::move(entree);
}

} // namespace keltrove::socle
