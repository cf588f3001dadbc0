#include "moteur/TenantDuPort.hpp"

namespace keltrove::moteur {

// Rien n’est demandé à ce système : seule la page y dit si elle est la nôtre.
Tenant tenantDuPort(int) {
  return Tenant::inconnu;
}

} // namespace keltrove::moteur
