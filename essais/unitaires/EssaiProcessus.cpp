#include "EssaiProcessus.hpp"

#include "MaisonTemporaire.hpp"
#include "socle/Descripteur.hpp"

#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <mutex>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace keltrove::socle {
namespace {

TEST_F(EssaiProcessus, LesDeuxSortiesArriventParLeMemeTubeEtLeCodeEnsuite) {
  ASSERT_TRUE(lancerLeShell("echo un; echo deux >&2; exit 3"));
  EXPECT_EQ(toutCeQuIlDit(), "un\ndeux\n");
}

TEST_F(EssaiProcessus, LEnfantRecoitExactementSonEnvironnement) {
  ASSERT_TRUE(lancer("/usr/bin/env", {}));
  EXPECT_EQ(toutCeQuIlDit(), "PATH=/usr/bin:/bin\nACCENT=é\n=\n");
}

TEST_F(EssaiProcessus, LEnfantNAHeriteQueDeTroisDescripteurs) {
  const int fuite = ::open("/dev/null", O_RDONLY); // sans O_CLOEXEC, exprès
  ASSERT_GT(fuite, 2);
  ASSERT_TRUE(lancer("/bin/ls", {"/dev/fd/"})); // le quatrième est le dossier que ls lit
  EXPECT_EQ(toutCeQuIlDit(), "0\n1\n2\n3\n");
  ::close(fuite);
}

TEST_F(EssaiProcessus, LEnfantTravailleDansSonDossierEtSonEntreeEstVide) {
  const essais::MaisonTemporaire maison;
  maison.ecrire("entree", "la nôtre");
  const Descripteur avant(::dup(STDIN_FILENO));
  const Descripteur entree(::open(maison.chemin("entree").c_str(), O_RDONLY));
  ::dup2(entree.numero(), STDIN_FILENO);
  const bool lance = lancer("/bin/sh", {"-c", "pwd; cat; echo fin"}, maison.racine());
  ::dup2(avant.numero(), STDIN_FILENO);
  ASSERT_TRUE(lance);
  EXPECT_EQ(toutCeQuIlDit(), maison.racine() + "\nfin\n");
}

TEST_F(EssaiProcessus, UnLancementRefuseDonneLeTexteDuSysteme) {
  const essais::MaisonTemporaire maison;
  maison.ecrire("sans-droit", "#!/bin/sh\n");
  maison.ecrireExecutable("sans-interprete", "#!/nulle/part\n");
  maison.ecrireExecutable("sans-entete", "bonjour\n");
  EXPECT_FALSE(lancer(maison.chemin("absent"), {}));
  EXPECT_EQ(raison, "No such file or directory");
  EXPECT_FALSE(lancer(maison.chemin("sans-droit"), {}));
  EXPECT_EQ(raison, "Permission denied");
  EXPECT_FALSE(lancer(maison.chemin("sans-interprete"), {}));
  EXPECT_EQ(raison, "No such file or directory");
  EXPECT_FALSE(lancer(maison.chemin("sans-entete"), {}));
  EXPECT_EQ(raison, "Exec format error");
  EXPECT_FALSE(lancer("/bin/true", {}, maison.chemin("absent")));
  EXPECT_EQ(raison, "No such file or directory");
}

TEST_F(EssaiProcessus, TerminerDemandeLaFinEtNEstPlusRienEnsuite) {
  ASSERT_TRUE(lancer("/bin/sleep", {"1000"}));
  EXPECT_TRUE(processus->tourne());
  processus->terminer();
  EXPECT_TRUE(attendreLaFin());
  processus->terminer();
}

TEST_F(EssaiProcessus, LaFinSAnnonceUneFoisEtTardivementToutDeSuite) {
  std::atomic<int> fins = 0;
  ASSERT_TRUE(lancer("/bin/sleep", {"1000"}));
  processus->surveillerLaFin([&] { ++fins; });
  EXPECT_EQ(fins, 0);
  processus->terminer();
  EXPECT_TRUE(attendreLaFin());
  EXPECT_TRUE(essais::attendre([&] { return fins > 0; }));
  EXPECT_EQ(fins, 1);
  processus->surveillerLaFin([&] { fins += 10; });
  EXPECT_EQ(fins, 11);
}

TEST_F(EssaiProcessus, UnDescendantQuiGardeLeTubeNeRetientPersonne) {
  ASSERT_TRUE(lancerLeShell("sleep 1000 & echo lance; exit 0"));
  EXPECT_EQ(toutCeQuIlDit(), "lance\n");
}

TEST_F(EssaiProcessus, UnFlotSansFinSeLitParMorceauxDe64KioAuPlus) {
  ecoute.garder = false;
  std::size_t plusGrand = 0;
  auto issue = Processus::lancer({"/usr/bin/yes", {"é"}, "/", {}}, [&](std::string_view bloc) {
    const std::lock_guard garde(ecoute.verrou);
    plusGrand = std::max(plusGrand, bloc.size());
    ecoute.octets += bloc.size();
    ecoute.arrivee.notify_all();
  });
  ASSERT_TRUE(issue);
  processus = *issue;
  EXPECT_TRUE(ecoute.attendre([&] { return ecoute.octets > 50'000'000; }));
  processus->terminer();
  EXPECT_TRUE(attendreLaFin());
  processus->viderLaSortie();
  EXPECT_LE(plusGrand, 65536U);
}

TEST_F(EssaiProcessus, LacherUnProcessusNeLeTuePas) {
  ASSERT_TRUE(lancer("/bin/sleep", {"1000"}));
  const auto pid = processus->pid();
  processus.reset();
  EXPECT_EQ(::kill(pid, 0), 0);
  ::kill(pid, SIGKILL);
  EXPECT_TRUE(essais::attendre([&] { return ::kill(pid, 0) != 0; })) << "recueilli même sans propriétaire";
}

} // namespace
} // namespace keltrove::socle
