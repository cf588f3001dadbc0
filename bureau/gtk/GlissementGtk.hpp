// GlissementGtk : ce qu’un glissement venu d’ailleurs porte, lu sans attendre le dépôt.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <gtk/gtk.h>

namespace keltrove::bureau {

// Ce glissement pourrait-il porter des fichiers ? Un glissement né dans l’application ne le peut pas : les
// liens et les images de la page se disent aussi listes d’adresses.
bool pourraitPorterDesFichiers(GdkDrop* glissement);

// Lit la liste d’adresses et en rend les chemins des fichiers de cette machine, dans l’ordre ; aucun si elle
// est illisible, démesurée, ou ne nomme rien de tel. Un chemin qui n’est pas en UTF-8 ne peut entrer dans la
// page : il est écarté. `fini` vient plus tard, sur le fil principal, une fois.
void lireLesChemins(GdkDrop* glissement, std::function<void(std::vector<std::string>)> fini);

} // namespace keltrove::bureau
