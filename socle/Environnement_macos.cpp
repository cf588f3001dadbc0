#include "socle/Environnement.hpp"

#include <crt_externs.h>

namespace keltrove::socle {

Environnement Environnement::duProcessus() {
  return Environnement(*::_NSGetEnviron());
}

} // namespace keltrove::socle
