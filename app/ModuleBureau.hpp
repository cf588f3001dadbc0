// ModuleBureau : ce que l’exécutable et le module du bureau se disent.
//
// Rien d’autre ne passe de l’un à l’autre : chacun a sa propre copie du socle et du comportement, variables
// globales comprises. L’étape qu’un côté noterait au journal, l’autre ne la verrait pas.
#pragma once

namespace keltrove::app {

struct AppelDuBureau {
  int nombreDArguments = 0;
  char** arguments = nullptr;
  const char* executable = nullptr; // chemin, liens résolus
};

// Rend l’état de sortie du processus.
using LancerLeBureau = int (*)(const AppelDuBureau& appel);

// Le nom, sans décoration, sous lequel le module la donne.
inline constexpr const char* nomDeLEntree = "keltroveLancerLeBureau";

inline constexpr const char* nomDuModule = "libkeltrove-bureau.so";

} // namespace keltrove::app
