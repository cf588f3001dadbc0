// FenetreX11 : ce que seul X11 laisse dire d’une fenêtre. Fil principal seulement.
#pragma once

#include <cstdint>

#include <gdk/gdk.h>

namespace keltrove::bureau {

// Elle ne demande ni le clavier, ni une place dans la barre des tâches. À appeler avant qu’elle ne se montre.
// Rend son numéro ; sous un autre système de fenêtres, ne fait rien et rend 0.
std::int64_t effacerLaFenetre(GdkSurface* surface);

} // namespace keltrove::bureau
