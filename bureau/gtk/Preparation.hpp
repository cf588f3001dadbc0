// Preparation : tout ce qui doit précéder la boîte à outils, dans le seul ordre possible.
#pragma once

#include <expected>
#include <optional>
#include <string>

namespace keltrove::bureau {

struct Prete {
  bool sansBacASable = false; // ce système refuse celui de WebKit
};

// La boîte à outils est initialisée au retour ; sinon, la phrase dit à l’utilisateur ce qui manque. À appeler
// une fois, avant tout fil : ce qu’elle règle passe par l’environnement du processus. Qui a besoin de
// l’environnement de l’utilisateur en prend donc copie avant elle. Les icônes se cherchent aussi à côté des
// ressources, là où il y en a.
std::expected<Prete, const char*> preparerLaBoiteAOutils(const std::optional<std::string>& ressources);

} // namespace keltrove::bureau
