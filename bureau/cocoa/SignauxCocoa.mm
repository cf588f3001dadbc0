#include "bureau/cocoa/SignauxCocoa.hpp"

#include "socle/Fil.hpp"
#include "socle/SignauxDeFin.hpp"

#include <system_error>
#include <thread>
#include <utility>

namespace keltrove::bureau {

sigset_t retenirLesSignaux() {
  sigset_t signaux;
  sigemptyset(&signaux);
  for (const int signal : socle::signauxDeFin())
    sigaddset(&signaux, signal);
  ::pthread_sigmask(SIG_BLOCK, &signaux, nullptr);
  return signaux;
}

void ecouterLesSignaux(const sigset_t& signaux, std::function<void()> quandIlEnVient) {
  try {
    std::thread([signaux, quandIlEnVient = std::move(quandIlEnVient)] {
      socle::nommerLeFil("signaux");
      for (int signal = 0; ::sigwait(&signaux, &signal) == 0;)
        quandIlEnVient();
    }).detach();
  } catch (const std::system_error&) {
    ::pthread_sigmask(SIG_UNBLOCK, &signaux, nullptr);
  }
}

} // namespace keltrove::bureau
