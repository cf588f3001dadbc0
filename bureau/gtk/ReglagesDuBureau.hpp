// ReglagesDuBureau : ce que le bureau de l’utilisateur règle pour les notifications.
#pragma once

#include "socle/Environnement.hpp"

namespace keltrove::bureau {

// L’interrupteur que GNOME tient par application ; vrai là où il n’existe pas.
bool lesNotificationsSontPermises();

// Ouvre le panneau des notifications de GNOME ou de KDE, avec cet environnement ; ne fait rien ailleurs.
void ouvrirLesReglagesDeNotification(const socle::Environnement& environnement);

} // namespace keltrove::bureau
