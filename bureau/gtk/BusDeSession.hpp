// BusDeSession : l’application se passe d’un bus de session ; WebKit, non.
#pragma once

namespace keltrove::bureau {

// Devant une adresse à laquelle personne ne répond, WebKit interrompt tout le processus. Cette fonction déclare
// alors le bus absent. À appeler avant la boîte à outils et avant tout fil.
void ecarterUnBusMort();

} // namespace keltrove::bureau
