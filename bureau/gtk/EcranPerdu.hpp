// EcranPerdu : le serveur d’affichage X ou le compositeur Wayland s’en va, et le programme
// doit partir avec lui.
#pragma once

#include <functional>

namespace keltrove::bureau {

// `faire` est appelé au lieu de la fin immédiate, une fois, sur le fil principal ; il peut attendre,
// mais ni dessiner ni revenir à la boucle d’événements. Le programme se termine ensuite sur l’état 1,
// sans rien détruire : les destructeurs parleraient à un écran qui n’est plus. À appeler une fois, la
// boîte à outils prête.
void quandLEcranDisparait(std::function<void()> faire);

} // namespace keltrove::bureau
