// BusDeSession : l’application se passe d’un bus de session ; GLib et WebKit, moins bien.
#pragma once

namespace keltrove::bureau {

// Devant une adresse à laquelle personne ne répond, WebKit interrompt tout le processus ; sans adresse, GLib
// lance un bus qui nous survivrait. Dans les deux cas, cette fonction déclare le bus absent, et avec lui
// l’accessibilité de GTK. À appeler avant la boîte à outils et avant tout fil.
void ecarterUnBusAbsent();

} // namespace keltrove::bureau
