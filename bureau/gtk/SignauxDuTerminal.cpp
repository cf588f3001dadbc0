#include "bureau/gtk/SignauxDuTerminal.hpp"

#include "socle/Fil.hpp"

#include <csignal>
#include <system_error>
#include <thread>

#include <unistd.h>

namespace keltrove::bureau {
namespace {

// Les lancements en cours, et l’état du fil avant le premier.
int lancements = 0;
sigset_t avant;

sigset_t signauxDuTerminal() {
  sigset_t signaux;
  sigemptyset(&signaux);
  for (const int signal : {SIGINT, SIGHUP})
    sigaddset(&signaux, signal);
  return signaux;
}

void lesRecevoirSeul() {
  sigset_t autres;
  sigfillset(&autres);
  for (const int signal : {SIGINT, SIGHUP})
    sigdelset(&autres, signal);
  ::pthread_sigmask(SIG_SETMASK, &autres, nullptr);
  socle::nommerLeFil("signaux");
  while (true)
    ::pause();
}

} // namespace

void retenirLesSignauxDuTerminal() {
  try {
    std::thread(lesRecevoirSeul).detach();
  } catch (const std::system_error&) {
    return;
  }
  const auto signaux = signauxDuTerminal();
  ::pthread_sigmask(SIG_BLOCK, &signaux, nullptr);
}

SignauxRendus::SignauxRendus() {
  const auto signaux = signauxDuTerminal();
  if (lancements++ == 0) ::pthread_sigmask(SIG_UNBLOCK, &signaux, &avant);
}

SignauxRendus::~SignauxRendus() {
  if (--lancements == 0) ::pthread_sigmask(SIG_SETMASK, &avant, nullptr);
}

} // namespace keltrove::bureau
