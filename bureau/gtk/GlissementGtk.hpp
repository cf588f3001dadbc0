// GlissementGtk : ce qu’un glissement venu d’ailleurs porte, lu sans attendre le dépôt.
#pragma once

#include "fenetre/SuiviDuGlissement.hpp"

#include <functional>

#include <gtk/gtk.h>

namespace keltrove::bureau {

// Ce glissement pourrait-il porter des fichiers ? Un glissement né dans l’application ne le peut pas : les
// liens et les images de la page se disent aussi listes d’adresses.
bool pourraitPorterDesFichiers(GdkDrop* glissement);

// Lit la liste d’adresses et en rend ce qui compte, dans l’ordre ; rien si elle est illisible ou dépasse
// seize mébioctets. Un fichier d’une autre machine n’est qu’une adresse. `fini` vient plus tard, sur le fil
// principal, une fois ; jamais si la source se tait.
void lireCeQuIlPorte(GdkDrop* glissement, std::function<void(fenetre::Portes)> fini);

// La vue telle que le glissement la rencontre.
fenetre::MesuresDeLaVue mesurer(GtkWidget* vue, double zoom);

} // namespace keltrove::bureau
