// EssaiDeLancement : le système laisse-t-il lancer ce programme, avant que WebKit n’en dépende ?
//
// Devant un lancement refusé, ou sans descripteur pour parler à ses programmes, WebKit interrompt tout le
// processus. Une réponse n’est qu’un présage : le système peut changer d’avis aussitôt après.
#pragma once

namespace keltrove::bureau {

enum class Lancement {
  reussi,     // le programme a fini sur l’état zéro
  rate,       // il a fini autrement, ou n’existe pas
  impossible, // le système n’a plus de quoi lancer un processus
};

// Lance et attend un programme bref, muet, cherché dans PATH. Le tableau finit par un pointeur nul. Bloque le
// temps que le programme dure : quelques millisecondes.
Lancement essayerDeLancer(const char* const* arguments);

// Vrai s’il reste un processus et soixante-quatre descripteurs pour la page.
bool peutLancerUnProcessus();

} // namespace keltrove::bureau
