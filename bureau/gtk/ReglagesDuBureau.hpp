// ReglagesDuBureau : ce que le bureau de l’utilisateur règle pour les notifications.
#pragma once

#include "socle/Environnement.hpp"

namespace keltrove::bureau {

// L’interrupteur que GNOME tient par application ; vrai là où il n’existe pas.
bool lesNotificationsSontPermises();

// Ouvre le panneau des notifications de GNOME ou de KDE, avec cet environnement et sans l’attendre ; ne fait
// rien ailleurs, ni si aucun programme de ce bureau n’est installé. Fil principal seulement.
void ouvrirLesReglagesDeNotification(const socle::Environnement& environnement);

} // namespace keltrove::bureau
