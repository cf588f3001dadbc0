// ModuleBureau : ce que l’exécutable et le bureau se disent.
//
// Rien d’autre ne passe de l’un à l’autre. Sous Linux, où le bureau est un module, chacun a sa propre copie
// du socle et du comportement, variables globales comprises : l’étape qu’un côté noterait au journal, l’autre
// ne la verrait pas.
#pragma once

namespace keltrove::app {

// `executable` : son chemin, liens résolus. Rend l’état de sortie du processus.
using LancerLeBureau = int (*)(const char* executable);

} // namespace keltrove::app

// L’entrée du bureau.
extern "C" [[gnu::visibility("default")]] int keltroveLancerLeBureau(const char* executable);
