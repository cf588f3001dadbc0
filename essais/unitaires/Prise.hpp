// Prise : ouvrir une prise de flux qu’aucun programme lancé n’hérite.
#pragma once

#include <fcntl.h>
#include <sys/socket.h>

namespace keltrove::essais {

inline int ouvrirUnePrise(int famille) {
  const int prise = ::socket(famille, SOCK_STREAM, 0);
  ::fcntl(prise, F_SETFD, FD_CLOEXEC);
  return prise;
}

} // namespace keltrove::essais
