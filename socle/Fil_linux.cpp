#include "socle/Fil.hpp"

#include <string>

#include <pthread.h>

namespace keltrove::socle {

void nommerLeFil(std::string_view nom) {
  constexpr std::size_t maximum = 15;
  nom.remove_prefix(nom.rfind('.') + 1);
  ::pthread_setname_np(::pthread_self(), std::string(nom.substr(0, maximum)).c_str());
}

} // namespace keltrove::socle
