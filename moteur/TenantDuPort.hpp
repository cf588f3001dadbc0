// TenantDuPort : à qui est ce qui répond sur http://localhost:<port>/.
//
// La machine peut être partagée : sans cette question, la page d’un autre compte passerait pour la
// nôtre. Aucune erreur n’est signalée : là où le système sait répondre, une réponse illisible est celle
// d’un étranger, et l’on n’y envoie ni question ni jeton. Bloquante, le temps d’une lecture ;
// utilisable depuis tout fil.
#pragma once

#include "moteur/Tenant.hpp"

namespace keltrove::moteur {

// Ce que le système en dit à cet instant ; un autre peut prendre le port aussitôt après.
Tenant tenantDuPort(int port);

} // namespace keltrove::moteur
