// FlechesDeMenu : d’un menu dont un seul article se laisse choisir, GTK 4 laisse les flèches sortir. Le menu
// reste ouvert, et la page a le clavier. Fil principal seulement.
#pragma once

#include <gtkmm/popover.h>

namespace keltrove::bureau {

// Celles qui montent et descendent, et Tabulation ; les autres vont aux menus voisins.
void retenirLesFleches(Gtk::Popover& volet);

} // namespace keltrove::bureau
