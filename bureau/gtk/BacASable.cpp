#include "bureau/gtk/BacASable.hpp"

#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace keltrove::bureau {
namespace {

bool bacASableMarche() {
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  // Les mêmes cloisons que celles dont WebKit se sert.
  const char* const arguments[] = {
      "bwrap", "--die-with-parent", "--unshare-all", "--ro-bind", "/", "/", "--proc", "/proc", "--dev",
      "/dev",  "/bin/true",         nullptr};
  pid_t essai = -1;
  const int erreur =
      ::posix_spawnp(&essai, "bwrap", &actions, nullptr, const_cast<char* const*>(arguments), ::environ);
  ::posix_spawn_file_actions_destroy(&actions);
  if (erreur != 0) return false;
  int etat = 0;
  while (::waitpid(essai, &etat, 0) < 0)
    if (errno != EINTR) return false;
  return etat == 0;
}

} // namespace

bool renoncerAuBacASableRefuse() {
  constexpr const char* variable = "WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS";
  if (std::getenv(variable) != nullptr || bacASableMarche()) return false;
  ::setenv(variable, "1", 1);
  return true;
}

} // namespace keltrove::bureau
