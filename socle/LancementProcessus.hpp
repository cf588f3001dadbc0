// LancementProcessus : les deux étapes d’un lancement que chaque système écrit à sa façon.
//
// Processus seul s’en sert. Utilisable depuis tout fil.
#pragma once

#include <spawn.h>

namespace keltrove::socle {

// À l’appelant de fermer les deux bouts.
struct Tube {
  int lecture = -1;
  int ecriture = -1;
};

// Un tube dont aucun bout ne passe à un autre programme. Faux en cas d’échec (errno).
bool ouvrirTube(Tube& tube);

// Réserve l’enfant aux descripteurs 0, 1 et 2. À appeler après les actions qui se servent d’autres
// descripteurs : selon le système, c’est une action de plus, la dernière, ou un drapeau ajouté à `drapeaux`.
void fermerLesAutresDescripteurs(posix_spawn_file_actions_t& actions, short& drapeaux);

} // namespace keltrove::socle
