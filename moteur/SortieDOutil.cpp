#include "moteur/SortieDOutil.hpp"

#include "socle/Descripteur.hpp"
#include "socle/Environnement.hpp"
#include "socle/LancementProcessus.hpp"

#include <array>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace keltrove::moteur {
namespace {

using socle::Descripteur;

// Notre entrée, le tube pour sortie, et rien où se plaindre.
bool lancer(pid_t& enfant, std::vector<std::string> mots, int ecriture) {
  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributs;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawnattr_init(&attributs);
  ::posix_spawn_file_actions_adddup2(&actions, STDIN_FILENO, STDIN_FILENO);
  ::posix_spawn_file_actions_adddup2(&actions, ecriture, STDOUT_FILENO);
  ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  short drapeaux = 0;
  socle::fermerLesAutresDescripteurs(actions, drapeaux);
  ::posix_spawnattr_setflags(&attributs, drapeaux);
  auto environnement = socle::Environnement::duProcessus().entrees();
  const int erreur = ::posix_spawn(&enfant, mots.front().c_str(), &actions, &attributs,
                                   socle::tableauC(mots).data(), socle::tableauC(environnement).data());
  ::posix_spawnattr_destroy(&attributs);
  ::posix_spawn_file_actions_destroy(&actions);
  return erreur == 0;
}

std::string lireJusquAuBout(int lecture) {
  std::string texte;
  std::array<char, 4096> bloc;
  for (;;) {
    const auto lus = ::read(lecture, bloc.data(), bloc.size());
    if (lus > 0) texte.append(bloc.data(), static_cast<std::size_t>(lus));
    if (lus == 0 || (lus < 0 && errno != EINTR)) return texte;
  }
}

} // namespace

std::string sortieDe(std::vector<std::string> mots) {
  socle::Tube tube;
  if (!socle::ouvrirTube(tube)) return {};
  const Descripteur lecture(tube.lecture);
  Descripteur ecriture(tube.ecriture);
  pid_t enfant = -1;
  if (!lancer(enfant, std::move(mots), ecriture.numero())) return {};
  ecriture.fermer();
  auto texte = lireJusquAuBout(lecture.numero());
  while (::waitpid(enfant, nullptr, 0) < 0 && errno == EINTR) {
  }
  return texte;
}

} // namespace keltrove::moteur
