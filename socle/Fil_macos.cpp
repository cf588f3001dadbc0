#include "socle/Fil.hpp"

#include <string>

#include <pthread.h>

namespace keltrove::socle {

void nommerLeFil(std::string_view nom) {
  constexpr std::size_t maximum = 63;
  if (nom.size() > maximum) nom.remove_prefix(nom.size() - maximum);
  ::pthread_setname_np(std::string(nom).c_str());
}

} // namespace keltrove::socle
