#include "socle/SignauxDeFin.hpp"

#include <csignal>

namespace keltrove::socle {
namespace {

bool estIgnore(int signal) {
  struct sigaction action{};
  return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

} // namespace

std::vector<int> signauxDeFin() {
  std::vector<int> signaux{SIGTERM, SIGINT, SIGHUP};
  std::erase_if(signaux, estIgnore);
  return signaux;
}

} // namespace keltrove::socle
