// LancementProcessus : les deux étapes d’un lancement que chaque système écrit à sa façon.
#pragma once

#include <spawn.h>

namespace keltrove::socle {

struct Tube {
  int lecture = -1;
  int ecriture = -1;
};

// Un tube dont aucun bout ne passe à un autre programme. Faux en cas d’échec (errno).
bool ouvrirTube(Tube& tube);

// Réserve l’enfant aux descripteurs 0, 1 et 2.
void fermerLesAutresDescripteurs(posix_spawn_file_actions_t& actions, short& drapeaux);

} // namespace keltrove::socle
