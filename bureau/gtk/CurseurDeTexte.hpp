// CurseurDeTexte : F7 doit traverser la boîte à outils jusqu’à la page.
#pragma once

namespace keltrove::bureau {

// WebKit demande à un texte de GTK caché ce que chaque touche veut dire ; F7 y cache le curseur, et GTK 4.8
// arrête alors le programme au clignotement suivant. Retire ce sens à F7 dans tous les textes. À appeler
// après l’initialisation de GTK.
void retirerF7AuxTextes();

} // namespace keltrove::bureau
