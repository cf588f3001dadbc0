// BusDeSession : l’application se passe du bus de session et de celui d’accessibilité ; ses
// bibliothèques, moins bien.
#pragma once

namespace keltrove::bureau {

// Devant une adresse à laquelle personne ne répond, WebKit interrompt tout le processus ; sans adresse, GLib
// lance un bus qui nous survivrait. Sans bus d’accessibilité, GTK et WebKit s’en plaignent sur la console.
// Cette fonction déclare absent celui qui l’est, l’accessibilité suivant le sort du bus de session. À appeler
// avant la boîte à outils, et la dernière à changer l’environnement : GLib garde de sa question un fil. Elle
// attend la réponse du bus, quelques millisecondes d’ordinaire.
void ecarterLesBusAbsents();

} // namespace keltrove::bureau
