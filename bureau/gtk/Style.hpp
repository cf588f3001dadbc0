// Style : la feuille de style GTK, faite des mesures et des couleurs communes à tous les bureaux.
#pragma once

#include <glibmm/ustring.h>
#include <gtkmm/widget.h>

namespace keltrove::bureau {

// Pour toute l’application : ses règles portent sur les classes que nos éléments se donnent.
Glib::ustring feuilleDeStyle();

// Vrai si le thème du système est sombre : s’il écrit en clair, dans cette fenêtre. Le nom d’un thème ne
// le dit pas toujours.
bool themeSombre(Gtk::Widget& fenetre);

} // namespace keltrove::bureau
