// ModuleBureau : ce que l’exécutable et le bureau se disent.
//
// Rien d’autre ne passe de l’un à l’autre. Sous Linux, où le bureau est un module, chacun a sa propre copie
// du socle et du comportement, variables globales comprises : l’étape qu’un côté noterait au journal, l’autre
// ne la verrait pas.
#pragma once

namespace keltrove::app {

struct AppelDuBureau {
  int nombreDArguments = 0;
  char** arguments = nullptr;
  const char* executable = nullptr; // chemin, liens résolus
};

// Rend l’état de sortie du processus.
using LancerLeBureau = int (*)(const AppelDuBureau& appel);

} // namespace keltrove::app

// L’entrée du bureau.
extern "C" [[gnu::visibility("default")]] int
keltroveLancerLeBureau(const keltrove::app::AppelDuBureau& appel);
