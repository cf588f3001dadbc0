#include "socle/SortieDErreur.hpp"

#include <algorithm>
#include <climits>

#include <poll.h>
#include <unistd.h>

namespace keltrove::socle {
namespace {

// Ce qu’un tube prêt prend d’un trait, dans tous les systèmes.
constexpr std::size_t bouchee = _POSIX_PIPE_BUF;

bool prendrait() {
  pollfd sortie{.fd = STDERR_FILENO, .events = POLLOUT, .revents = 0};
  return ::poll(&sortie, 1, 0) == 1 && (sortie.revents & POLLOUT) != 0;
}

} // namespace

void direSurLaSortieDErreur(std::string_view texte) {
  while (!texte.empty() && prendrait()) {
    const auto ecrits = ::write(STDERR_FILENO, texte.data(), std::min(texte.size(), bouchee));
    if (ecrits <= 0) return;
    texte.remove_prefix(static_cast<std::size_t>(ecrits));
  }
}

} // namespace keltrove::socle
