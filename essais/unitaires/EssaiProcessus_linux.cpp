#include "EssaiProcessus.hpp"

#include <filesystem>
#include <iterator>
#include <string>
#include <thread>

#include <unistd.h>

namespace keltrove::socle {

TEST_F(EssaiProcessus, LEnfantALesSignauxParDefautEtSonPropreGroupe) {
  ::signal(SIGPIPE, SIG_IGN);
  ::signal(SIGHUP, SIG_IGN);
  sigset_t bloques;
  sigemptyset(&bloques);
  sigaddset(&bloques, SIGTERM);
  ::pthread_sigmask(SIG_BLOCK, &bloques, nullptr);
  ASSERT_TRUE(lancer("/bin/cat", {"/proc/self/status", "/proc/self/stat"}));
  ::pthread_sigmask(SIG_UNBLOCK, &bloques, nullptr);
  const auto texte = toutCeQuIlDit();
  EXPECT_NE(texte.find("SigBlk:\t0000000000000000"), std::string::npos) << texte;
  // Les signaux 32 et 33 appartiennent à la bibliothèque C, qui, selon sa version, les ignore ou non dans
  // tout enfant.
  EXPECT_TRUE(texte.contains("SigIgn:\t0000000180000000") || texte.contains("SigIgn:\t0000000000000000"))
      << texte;
  // « pid (cat) état parent groupe »
  const auto attendu = std::to_string(processus->pid()) + " (cat) R " + std::to_string(::getpid()) + " " +
                       std::to_string(processus->pid()) + " ";
  EXPECT_NE(texte.find(attendu), std::string::npos) << texte;
}

TEST_F(EssaiProcessus, NiSonAttenteNiSaLectureNeLuiSurvivent) {
  const auto fils = [] {
    const std::filesystem::directory_iterator taches("/proc/self/task");
    return std::distance(begin(taches), end(taches));
  };
  std::thread([] {}).join(); // qui surveille les courses a lui-même un fil, né avec le premier
  const auto avant = fils();
  ASSERT_TRUE(lancerLeShell("echo un"));
  EXPECT_EQ(toutCeQuIlDit(), "un\n");
  EXPECT_TRUE(essais::attendre([&] { return fils() == avant; }));
}

} // namespace keltrove::socle
