// TenantDuPort : à qui est ce qui répond sur http://localhost:<port>/.
//
// La machine peut être partagée : sans cette question, la page d’un autre compte passerait pour la
// nôtre. Aucune erreur n’est signalée : là où le système sait répondre, une réponse illisible est celle
// d’un étranger, et l’on n’y envoie ni question ni jeton. Bloquante, le temps d’une lecture ;
// utilisable depuis tout fil.
#pragma once

#include "moteur/TablesDePrises.hpp"

#include <span>

namespace keltrove::moteur {

enum class Tenant {
  nousOuLAdministrateur, // et personne d’autre
  etranger,              // un autre compte, même s’il n’est pas le seul ; ou personne
  inconnu,               // ce système ne le dit pas
};

// Ce que le système en dit à cet instant ; un autre peut prendre le port aussitôt après.
Tenant tenantDuPort(int port);

// La même réponse, tirée des prises à l’écoute ; `nous` est notre compte. Une prise que localhost n’atteint
// pas, sur une autre adresse de la machine, ne compte pas.
Tenant tenantParmi(std::span<const PriseALEcoute> prises, int port, uid_t nous);

} // namespace keltrove::moteur
