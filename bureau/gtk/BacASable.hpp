// BacASable : WebKit enferme la page dans un bac à sable (bubblewrap) que certains systèmes refusent.
#pragma once

namespace keltrove::bureau {

// Conteneur, racine changée, espaces d’utilisateur interdits : WebKit interrompt alors tout le processus.
// Cette fonction l’essaie avant lui (six millisecondes) et s’en passe s’il ne marche pas : la page est
// celle de notre propre serveur, sur cette machine. Vrai si elle y a renoncé, faux aussi quand
// l’utilisateur l’avait fait lui-même. À appeler avant la boîte à outils et avant tout fil, car elle pose
// une variable d’environnement.
[[nodiscard]] bool renoncerAuBacASableRefuse();

} // namespace keltrove::bureau
