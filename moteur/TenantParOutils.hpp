// TenantParOutils : à qui est un port, tiré de deux outils du système.
//
// L’un montre toutes les prises sans dire à qui elles sont, l’autre celles de notre compte seul : une prise
// que le second ne connaît pas est celle d’un autre. Celles de l’administrateur ne s’en distinguent pas.
#pragma once

#include "moteur/Tenant.hpp"

#include <string>

namespace keltrove::moteur {

// `netstat` et `lsof` : leurs chemins absolus. Inconnu si le premier ne répond pas comme on l’attend ;
// bloquante, le temps de leurs exécutions ; utilisable depuis tout fil.
Tenant tenantSelonOutils(const std::string& netstat, const std::string& lsof, int port, uid_t nous);

} // namespace keltrove::moteur
