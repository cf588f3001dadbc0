#include "bureau/gtk/EssaiDeLancement.hpp"

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace keltrove::bureau {
namespace {

// Ce que WebKit ouvre d’un coup pour lancer ses programmes, et largement.
constexpr std::size_t descripteursQuIlFaut = 64;

bool resteAssezDeDescripteurs() {
  std::array<int, descripteursQuIlFaut> ouverts{};
  std::size_t combien = 0;
  bool assez = true;
  while (assez && combien < ouverts.size()) {
    const int ouvert = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (ouvert >= 0) ouverts[combien++] = ouvert;
    assez = ouvert >= 0;
  }
  while (combien > 0)
    ::close(ouverts[--combien]);
  return assez;
}

} // namespace

Lancement essayerDeLancer(const char* const* arguments) {
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t enfant = -1;
  const int erreur = ::posix_spawnp(&enfant, arguments[0], &actions, nullptr,
                                    const_cast<char* const*>(arguments), ::environ);
  ::posix_spawn_file_actions_destroy(&actions);
  if (erreur != 0)
    return erreur == EAGAIN || erreur == ENOMEM || erreur == EMFILE || erreur == ENFILE
               ? Lancement::impossible
               : Lancement::rate;
  int etat = 0;
  while (::waitpid(enfant, &etat, 0) < 0)
    if (errno != EINTR) return Lancement::rate;
  return etat == 0 ? Lancement::reussi : Lancement::rate;
}

bool peutLancerUnProcessus() {
  const char* const arguments[] = {"/bin/true", nullptr};
  return resteAssezDeDescripteurs() && essayerDeLancer(arguments) != Lancement::impossible;
}

} // namespace keltrove::bureau
