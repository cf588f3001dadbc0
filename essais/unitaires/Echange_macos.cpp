#include "Echange.hpp"

#include <cstdio>

namespace keltrove::essais {

void echanger(const std::string& un, const std::string& autre) {
  ::renamex_np(un.c_str(), autre.c_str(), RENAME_SWAP);
}

} // namespace keltrove::essais
