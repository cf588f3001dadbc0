#include "socle/Environnement.hpp"

#include <unistd.h>

namespace keltrove::socle {

Environnement Environnement::duProcessus() {
  return Environnement(::environ);
}

} // namespace keltrove::socle
