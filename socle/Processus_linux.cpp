#include "socle/LancementProcessus.hpp"

#include <cerrno>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace keltrove::socle {

bool ouvrirTube(Tube& tube) {
  int bouts[2];
  if (::pipe2(bouts, O_CLOEXEC) != 0) return false;
  tube = {bouts[0], bouts[1]};
  return true;
}

void fermerLesAutresDescripteurs(posix_spawn_file_actions_t& actions, short&) {
  ::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
}

void attendreSansRecueillir(pid_t enfant) {
  siginfo_t fin{};
  while (::waitid(P_PID, static_cast<id_t>(enfant), &fin, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
  }
}

} // namespace keltrove::socle
