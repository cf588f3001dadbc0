#include "moteur/SockDiag_linux.hpp"
#include "moteur/TenantDuPort.hpp"

#include <unistd.h>

namespace keltrove::moteur {

Tenant tenantDuPort(int port) {
  auto prises = ecoutesParSockDiag();
  if (!prises) prises = lireTablesDePrises("/proc/self/net");
  return prises ? tenantParmi(*prises, port, ::geteuid()) : Tenant::etranger;
}

} // namespace keltrove::moteur
