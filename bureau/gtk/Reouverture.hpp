// Reouverture : relancer l’application juste après sa fin, quand on l’a redemandée pendant sa fermeture.
#pragma once

#include "socle/Environnement.hpp"

namespace keltrove::bureau {

// À appeler après la boucle d’événements : le nom de l’application est rendu, puis `executable` est lancé
// dans cet environnement, avec nos sorties, sans l’attendre. Un lancement impossible est sans suite :
// l’utilisateur relancera. Fil principal seulement.
void rouvrir(const char* executable, const socle::Environnement& environnement);

} // namespace keltrove::bureau
