// NavigateurDuBureau : ouvrir une adresse avec ce que l’utilisateur a choisi pour elle.
#pragma once

#include "socle/Environnement.hpp"

#include <functional>
#include <string>

namespace keltrove::bureau {

// Sans attendre. Le programme lancé reçoit cet environnement, non nos propres réglages. `rate` vient plus
// tard, sur le fil principal, si rien ne sait ouvrir l’adresse ; un programme lancé qui échoue ensuite ne se
// sait pas. Fil principal seulement.
void ouvrirDansLeNavigateur(const std::string& adresse, const socle::Environnement& environnement,
                            std::function<void()> rate);

} // namespace keltrove::bureau
