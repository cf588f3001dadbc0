// Style : la feuille de style GTK, faite des mesures et des couleurs communes à tous les bureaux.
#pragma once

#include <glibmm/ustring.h>

namespace keltrove::bureau {

Glib::ustring feuilleDeStyle();

// Vrai si le thème du système est sombre.
bool themeSombre();

} // namespace keltrove::bureau
