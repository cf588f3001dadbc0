#include "socle/Processus.hpp"

#include "socle/LancementProcessus.hpp"
#include "socle/Texte.hpp"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <future>
#include <mutex>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace keltrove::socle {

struct Processus::Etat {
  std::mutex verrou; // pid, fini, quandFini
  pid_t pid = -1;
  bool fini = false;
  std::function<void()> quandFini;

  std::mutex verrouLecture; // lecture du tube et appel de quandSortie
  int sortie = -1;
  QuandSortie quandSortie;

  ~Etat() {
    if (sortie >= 0) ::close(sortie);
  }
};

namespace {

constexpr std::size_t tailleDeLecture = 65536;

class Preparation {
public:
  Preparation(const std::string& dossier, int ecriture) {
    ::posix_spawn_file_actions_init(&actions_);
    ::posix_spawnattr_init(&attributs_);
    ::posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(&actions_, ecriture, STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions_, ecriture, STDERR_FILENO);
    ::posix_spawn_file_actions_addchdir_np(&actions_, dossier.c_str());
    short drapeaux = POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK;
    fermerLesAutresDescripteurs(actions_, drapeaux);
    sigset_t signaux;
    sigfillset(&signaux);
    ::posix_spawnattr_setsigdefault(&attributs_, &signaux);
    sigemptyset(&signaux);
    ::posix_spawnattr_setsigmask(&attributs_, &signaux);
    ::posix_spawnattr_setpgroup(&attributs_, 0);
    ::posix_spawnattr_setflags(&attributs_, drapeaux);
  }
  Preparation(const Preparation&) = delete;
  Preparation& operator=(const Preparation&) = delete;
  ~Preparation() {
    ::posix_spawnattr_destroy(&attributs_);
    ::posix_spawn_file_actions_destroy(&actions_);
  }

  int lancer(pid_t& pid, const CommandeProcessus& commande) const {
    std::vector<std::string> textes{commande.programme};
    textes.insert(textes.end(), commande.arguments.begin(), commande.arguments.end());
    return ::posix_spawn(&pid, commande.programme.c_str(), &actions_, &attributs_, tableauC(textes).data(),
                         tableauC(commande.environnement.entrees()).data());
  }

private:
  posix_spawn_file_actions_t actions_;
  posix_spawnattr_t attributs_;
};

enum class Lecture { donnees, rienPourLInstant, terminee };

Lecture lireUneFois(Processus::Etat& etat) {
  static thread_local std::vector<char> bloc(tailleDeLecture);
  const std::lock_guard garde(etat.verrouLecture);
  const auto lus = ::read(etat.sortie, bloc.data(), bloc.size());
  if (lus > 0) {
    etat.quandSortie({bloc.data(), static_cast<std::size_t>(lus)});
    return Lecture::donnees;
  }
  return lus < 0 && (errno == EAGAIN || errno == EINTR) ? Lecture::rienPourLInstant : Lecture::terminee;
}

void ecouterLaSortie(const std::shared_ptr<Processus::Etat>& etat) {
  pollfd attente{.fd = etat->sortie, .events = POLLIN, .revents = 0};
  while (::poll(&attente, 1, -1) > 0 || errno == EINTR)
    if (lireUneFois(*etat) == Lecture::terminee) return;
}

void attendreLaFin(const std::shared_ptr<Processus::Etat>& etat) {
  // Tant que l’enfant n’est pas recueilli, son numéro ne peut désigner personne d’autre, et terminer() peut
  // donc signaler sans risque sous le même verrou.
  attendreSansRecueillir(etat->pid);
  std::function<void()> quandFini;
  {
    const std::lock_guard garde(etat->verrou);
    etat->fini = true;
    while (::waitpid(etat->pid, nullptr, 0) < 0 && errno == EINTR) {
    }
    quandFini = std::move(etat->quandFini);
  }
  if (quandFini) quandFini();
}

// Le fil qui attendra l’enfant naît avant lui : un enfant sans personne pour l’attendre resterait zombie.
int lancerEtAttendre(const std::shared_ptr<Processus::Etat>& etat, const CommandeProcessus& commande,
                     int ecriture) {
  std::promise<int> issue;
  auto recue = issue.get_future();
  try {
    std::thread([etat, &commande, ecriture, promesse = std::move(issue)]() mutable {
      const int erreur = Preparation(commande.dossier, ecriture).lancer(etat->pid, commande);
      promesse.set_value(erreur);
      if (erreur == 0) attendreLaFin(etat);
    }).detach();
  } catch (const std::system_error& refus) {
    return refus.code().value();
  }
  return recue.get();
}

} // namespace

Processus::Processus(std::shared_ptr<Etat> etat) : etat_(std::move(etat)) {}

std::expected<std::shared_ptr<Processus>, std::string> Processus::lancer(const CommandeProcessus& commande,
                                                                         QuandSortie quandSortie) {
  Tube tube;
  if (!ouvrirTube(tube)) return std::unexpected(texteDuSysteme(static_cast<std::errc>(errno)));
  const auto etat = std::make_shared<Etat>();
  etat->sortie = tube.lecture;
  etat->quandSortie = std::move(quandSortie);
  ::fcntl(tube.lecture, F_SETFL, O_NONBLOCK);

  int erreur = 0;
  try {
    // Tant que nous tenons le bout d’écriture, ce fil attend ; le fermer sans enfant le termine.
    std::thread([etat] { ecouterLaSortie(etat); }).detach();
    erreur = lancerEtAttendre(etat, commande, tube.ecriture);
  } catch (const std::system_error& refus) {
    erreur = refus.code().value();
  }
  ::close(tube.ecriture);
  if (erreur != 0) return std::unexpected(texteDuSysteme(static_cast<std::errc>(erreur)));
  return std::make_shared<Processus>(etat);
}

pid_t Processus::pid() const {
  return etat_->pid;
}

bool Processus::tourne() const {
  const std::lock_guard garde(etat_->verrou);
  return !etat_->fini;
}

void Processus::terminer() {
  const std::lock_guard garde(etat_->verrou);
  if (!etat_->fini) ::kill(etat_->pid, SIGTERM);
}

void Processus::viderLaSortie() {
  // Un tube ne contient jamais plus que cela ; un descendant bavard ne doit pas nous retenir.
  constexpr int lecturesMaximum = 64;
  for (int i = 0; i < lecturesMaximum && lireUneFois(*etat_) == Lecture::donnees; ++i) {
  }
}

void Processus::surveillerLaFin(std::function<void()> quandFini) {
  {
    const std::lock_guard garde(etat_->verrou);
    if (!etat_->fini) {
      etat_->quandFini = std::move(quandFini);
      return;
    }
  }
  quandFini();
}

} // namespace keltrove::socle
