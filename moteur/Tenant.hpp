// Tenant : à qui est un port, d’après les prises qui l’écoutent. Sans effet, utilisable depuis tout fil.
#pragma once

#include "moteur/TablesDePrises.hpp"

#include <span>

#include <sys/types.h>

namespace keltrove::moteur {

enum class Tenant {
  nousOuLAdministrateur, // et personne d’autre
  etranger,              // un autre compte, même s’il n’est pas le seul ; ou personne
  inconnu,               // ce système ne le dit pas
};

// `nous` est notre compte. Une prise que localhost n’atteint pas, sur une autre adresse de la machine, ne
// compte pas.
Tenant tenantParmi(std::span<const PriseALEcoute> prises, int port, uid_t nous);

} // namespace keltrove::moteur
