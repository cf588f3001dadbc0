// CurseurDeTexte : le texte de GTK caché à qui WebKit demande ce que chaque touche veut dire. Ses propres
// défauts seraient les nôtres. Fil principal seulement.
#pragma once

#include <gtk/gtk.h>

namespace keltrove::bureau {

// F7 y cache le curseur, et GTK 4.8 arrête alors le programme au clignotement suivant ; Menu et Maj+F10 y
// ouvrent un menu dont la page n’a que faire. Retire ce sens à ces touches dans tous les textes. À appeler
// après l’initialisation de GTK.
void retirerDesTouchesAuxTextes();

// Ce texte garde tout ce que l’on tape, et le curseur qui y clignote fait attendre à chaque image de la page
// le prochain battement de l’horloge de GTK. Ses touches agiraient aussi pour lui-même : Tab et Ctrl+Tab
// emmèneraient le clavier hors de la page, Ctrl+. et Ctrl+; y écriraient un emoji, Maj+F10 et Menu
// ouvriraient son menu. `vue` est la vue de WebKit qui le contient ; sans lui, ne fait rien.
void figerLeTexteCacheDe(GtkWidget* vue);

} // namespace keltrove::bureau
