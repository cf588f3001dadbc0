// RenduSansCarte : sur une machine sans carte graphique, dessiner sans passer par GL.
#pragma once

namespace keltrove::bureau {

// Démarrer GL en logiciel double le temps d’ouverture et la mémoire, pour rien. À appeler avant la boîte à
// outils et avant tout fil. Ne touche pas aux variables que l’utilisateur a posées, ni à une machine qui a
// une carte.
void choisirLeRendu();

} // namespace keltrove::bureau
