#include "socle/LancementProcessus.hpp"

#include <fcntl.h>
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

} // namespace keltrove::socle
