#include "socle/Descripteur.hpp"
#include "socle/LancementProcessus.hpp"

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <thread>

#include <fcntl.h>
#include <sys/event.h>
#include <unistd.h>

namespace keltrove::socle {
namespace {

enum class Reponse { termine, refus };

// waitid ne convient pas : ici, il revient aussi pour un enfant suspendu.
Reponse demanderAuNoyau(pid_t enfant) {
  const Descripteur file(::kqueue());
  if (!file) return Reponse::refus;
  struct kevent fin{};
  EV_SET(&fin, static_cast<std::uintptr_t>(enfant), EVFILT_PROC, EV_ADD | EV_ONESHOT, NOTE_EXIT, 0, nullptr);
  int recus = -1;
  do
    recus = ::kevent(file.numero(), &fin, 1, &fin, 1, nullptr);
  while (recus < 0 && errno == EINTR);
  if (recus < 1) return errno == ESRCH ? Reponse::termine : Reponse::refus;
  // Un enfant déjà terminé ne se surveille plus : c’est la réponse que l’on attendait.
  const bool erreur = (fin.flags & EV_ERROR) != 0;
  return !erreur || fin.data == ESRCH ? Reponse::termine : Reponse::refus;
}

} // namespace

// Ce système n’ouvre pas de tube déjà réservé. Un enfant né entre les deux appels n’en hérite que s’il n’est
// pas lancé comme les nôtres, qui ne reçoivent que leurs trois descripteurs.
bool ouvrirTube(Tube& tube) {
  int bouts[2];
  if (::pipe(bouts) != 0) return false;
  for (const int bout : bouts)
    ::fcntl(bout, F_SETFD, FD_CLOEXEC);
  tube = {bouts[0], bouts[1]};
  return true;
}

void fermerLesAutresDescripteurs(posix_spawn_file_actions_t&, short& drapeaux) {
  drapeaux |= POSIX_SPAWN_CLOEXEC_DEFAULT;
}

void attendreSansRecueillir(pid_t enfant) {
  // Le noyau ne refuse que faute de descripteur ou de mémoire, ce qui passe.
  constexpr auto repit = std::chrono::milliseconds(100);
  while (demanderAuNoyau(enfant) == Reponse::refus)
    std::this_thread::sleep_for(repit);
}

} // namespace keltrove::socle
