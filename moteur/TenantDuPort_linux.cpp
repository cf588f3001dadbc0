#include "moteur/TenantDuPort.hpp"

#include <unistd.h>

namespace keltrove::moteur {

Tenant tenantDuPort(int port) {
  const auto prises = lireTablesDePrises("/proc/self/net");
  return prises ? tenantParmi(*prises, port, ::geteuid()) : Tenant::etranger;
}

} // namespace keltrove::moteur
