// RenduSansCarte : sur une machine sans carte graphique, dessiner sans passer par GL.
#pragma once

namespace keltrove::bureau {

// Démarrer GL en logiciel double le temps d’ouverture et la mémoire, pour rien. À appeler avant la boîte à
// outils et avant tout fil, car elle pose des variables d’environnement. Ne touche pas à celles que
// l’utilisateur a posées, ni à une machine qui a une carte (un « renderD… » dans /dev/dri).
void choisirLeRendu();

} // namespace keltrove::bureau
