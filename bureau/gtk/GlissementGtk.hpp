// GlissementGtk : ce qu’un glissement venu d’ailleurs porte, lu sans attendre le dépôt.
#pragma once

#include "fenetre/SuiviDuGlissement.hpp"

#include <functional>

#include <gtk/gtk.h>

namespace keltrove::bureau {

// Lit la liste d’adresses et en rend les fichiers, dans l’ordre ; rien s’il n’en porte pas, ou si elle est
// illisible ou dépasse seize mébioctets. Un fichier d’une autre machine n’est qu’une adresse. `fini` vient
// sur le fil principal, une fois, et sans attendre quand il n’y a pas de liste ; jamais si la source se tait.
void lireCeQuIlPorte(GdkDrop* glissement, std::function<void(fenetre::Portes)> fini);

// La vue telle que le glissement la rencontre.
fenetre::MesuresDeLaVue mesurer(GtkWidget* vue, double zoom);

} // namespace keltrove::bureau
