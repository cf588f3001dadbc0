// Prise : ouvrir une prise de flux qu’aucun programme lancé n’hérite, et lui permettre un port que garde une
// prise qui n’écoute pas.
#pragma once

#include <fcntl.h>
#include <sys/socket.h>

namespace keltrove::essais {

inline int ouvrirUnePrise(int famille) {
  const int prise = ::socket(famille, SOCK_STREAM, 0);
  ::fcntl(prise, F_SETFD, FD_CLOEXEC);
  return prise;
}

inline void permettreLaReprise(int prise) {
  const int oui = 1;
  ::setsockopt(prise, SOL_SOCKET, SO_REUSEADDR, &oui, sizeof oui);
}

} // namespace keltrove::essais
