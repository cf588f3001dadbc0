#include "Echange.hpp"

#include <cstdio>

#include <fcntl.h>

namespace keltrove::essais {

void echanger(const std::string& un, const std::string& autre) {
  ::renameat2(AT_FDCWD, un.c_str(), AT_FDCWD, autre.c_str(), RENAME_EXCHANGE);
}

} // namespace keltrove::essais
