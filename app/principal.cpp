// L’entrée du processus : vérifier un inventaire, ou ouvrir le bureau.

#include "app/ChargeurBureau.hpp"
#include "app/ModeExecution.hpp"
#include "socle/Executable.hpp"
#include "socle/SortieDErreur.hpp"
#include "verification/VerificationCode.hpp"

#include <csignal>
#include <cstdlib>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace keltrove;

// Lancés sans entrée ni sorties, nous ouvririons sinon nos propres fichiers sous les numéros 0, 1 et 2.
void garantirEntreeEtSorties() {
  int descripteur = 0;
  do
    descripteur = ::open("/dev/null", O_RDWR);
  while (descripteur >= 0 && descripteur <= STDERR_FILENO);
  if (descripteur >= 0) ::close(descripteur);
}

int finirSur(const std::string& phrase) {
  socle::direSurLaSortieDErreur(phrase + '\n');
  return EXIT_FAILURE;
}

int verifier(const app::ModeVerification& mode) {
  const auto resultat = verification::VerificationCode::verifier(mode.dossier, mode.cheminCle);
  return resultat.ok ? EXIT_SUCCESS : finirSur(resultat.message);
}

int ouvrirLeBureau(const char* nomDAppel) {
  const auto executable = socle::cheminDeLExecutable().value_or(nomDAppel);
  const auto lancer = app::chargerLeBureau(executable);
  if (!lancer) return finirSur(lancer.error());
  return (*lancer)(executable.c_str());
}

} // namespace

int main(int argc, char** argv) {
  garantirEntreeEtSorties();
  // Un terminal ou un tube fermé derrière nous ne doit pas nous emporter.
  ::signal(SIGPIPE, SIG_IGN);
  const char* cle = std::getenv("KELTROVE_MAJ_CLE");
  const auto mode = app::choisirLeMode(std::vector<std::string>(argv, argv + argc),
                                       cle != nullptr ? std::optional<std::string>(cle) : std::nullopt);
  if (const auto* verification = std::get_if<app::ModeVerification>(&mode)) return verifier(*verification);
  return ouvrirLeBureau(argv[0]);
}
