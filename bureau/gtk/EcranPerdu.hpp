// EcranPerdu : le serveur d’affichage X ou le compositeur Wayland s’en va, et le programme
// doit partir avec lui.
#pragma once

#include <functional>

namespace keltrove::bureau {

// `faire` est appelé au lieu de la fin immédiate, une fois, sur le fil principal ; il peut attendre, mais ni
// dessiner ni revenir à la boucle d’événements. Le programme se termine ensuite. À appeler
// quand la fenêtre existe.
void quandLEcranDisparait(std::function<void()> faire);

} // namespace keltrove::bureau
