#include "moteur/TenantDuPort.hpp"
#include "moteur/TenantParOutils.hpp"

#include <unistd.h>

namespace keltrove::moteur {

Tenant tenantDuPort(int port) {
  return tenantSelonOutils("/usr/sbin/netstat", "/usr/sbin/lsof", port, ::geteuid());
}

} // namespace keltrove::moteur
