// X11 : ce que lui seul laisse dire d’une fenêtre ou demande d’un glissement. Fil principal seulement.
#pragma once

#include <cstdint>

#include <gdk/gdk.h>

namespace keltrove::bureau {

// Elle ne demande ni le clavier, ni une place dans la barre des tâches. À appeler avant qu’elle ne se montre.
// Rend son numéro ; sous un autre système de fenêtres, ne fait rien et rend 0.
std::int64_t effacerLaFenetre(GdkSurface* surface);

// La source de ce glissement vit-elle encore ? X seul l’ignore quand elle meurt en route ; ailleurs, toujours
// vrai.
bool aEncoreSaSource(GdkDrop* glissement);

} // namespace keltrove::bureau
