// ChargeurBureau : le bureau n’est chargé que si l’on s’en sert.
//
// Sous Linux, c’est un module à côté de l’exécutable : lié directement, il coûterait à chaque vérification
// d’inventaire des dizaines de millisecondes, et l’obligerait à trouver une bibliothèque de bureau sur la
// machine.
#pragma once

#include "app/ModuleBureau.hpp"

#include <expected>
#include <string>

namespace keltrove::app {

// La fonction d’entrée du bureau ; le module se cherche à côté de l’exécutable puis dans « ../lib/keltrove ».
// En cas d’échec (aucun module, une bibliothèque absente, un module sans notre entrée) : une phrase pour
// l’utilisateur. Le module n’est jamais déchargé. Une fois, sur le fil principal.
std::expected<LancerLeBureau, std::string> chargerLeBureau(const std::string& executable);

} // namespace keltrove::app
