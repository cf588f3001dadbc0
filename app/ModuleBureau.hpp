// ModuleBureau : ce que l’exécutable et le module du bureau se disent.
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
