// LancementProcessus : les étapes d’un lancement et d’une fin, dont chaque système écrit certaines à sa
// façon.
//
// Utilisable depuis tout fil.
#pragma once

#include <string>
#include <vector>

#include <spawn.h>
#include <sys/types.h>

namespace keltrove::socle {

// À l’appelant de fermer les deux bouts.
struct Tube {
  int lecture = -1;
  int ecriture = -1;
};

// Un tube dont aucun bout ne passe à un autre programme. Faux en cas d’échec (errno).
bool ouvrirTube(Tube& tube);

// Ces textes comme posix_spawn les veut : les pointeurs valent tant que `textes` n’est pas touché.
std::vector<char*> tableauC(const std::vector<std::string>& textes);

// Réserve l’enfant aux descripteurs 0, 1 et 2. À appeler après les actions qui se servent d’autres
// descripteurs : selon le système, c’est une action de plus, la dernière, ou un drapeau ajouté à `drapeaux`.
void fermerLesAutresDescripteurs(posix_spawn_file_actions_t& actions, short& drapeaux);

// Bloque jusqu’à la fin de cet enfant, sans le recueillir. Aucun gestionnaire de SIGCHLD n’y sert : la boîte
// à outils a ses propres enfants.
void attendreSansRecueillir(pid_t enfant);

} // namespace keltrove::socle
