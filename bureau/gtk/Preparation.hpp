// Preparation : tout ce qui doit précéder la boîte à outils, dans le seul ordre possible.
#pragma once

#include <expected>

namespace keltrove::bureau {

struct Prete {
  bool sansBacASable = false; // ce système refuse celui de WebKit
};

// La boîte à outils est initialisée au retour ; sinon, la phrase dit à l’utilisateur ce qui manque. À appeler
// une fois, avant tout fil : ce qu’elle règle passe par l’environnement du processus. Qui a besoin de
// l’environnement de l’utilisateur en prend donc copie avant elle.
std::expected<Prete, const char*> preparerLaBoiteAOutils();

} // namespace keltrove::bureau
