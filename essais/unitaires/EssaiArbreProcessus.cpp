#include "MaisonTemporaire.hpp"
#include "Patience.hpp"
#include "Prise.hpp"
#include "moteur/AnalyseOutils.hpp"
#include "moteur/ArbreProcessus.hpp"
#include "socle/Processus.hpp"

#include <algorithm>
#include <csignal>

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace keltrove::moteur {
namespace {

using essais::attendre;

TEST(AnalyseOutils, LsofDonneLesPortsDistinctsDansLOrdre) {
  EXPECT_EQ(lireLsof("COMMAND PID USER FD TYPE DEVICE SIZE/OFF NODE NAME\n"
                     "node 123 me 21u IPv4 0x0 0t0 TCP 127.0.0.1:7777 (LISTEN)\n"
                     "node 123 me 22u IPv6 0x0 0t0 TCP [::1]:7777 (LISTEN)\n"
                     "node 123 me 23u IPv4 0x0 0t0 TCP *:7778 (LISTEN)\n"),
            (std::vector<int>{7777, 7778}));
}

TEST(AnalyseOutils, LsofIgnoreEnTeteEtLignesIllisibles) {
  EXPECT_EQ(lireLsof(""), std::vector<int>{});
  EXPECT_EQ(lireLsof("node 1 me TCP 127.0.0.1:7777 (LISTEN)\n"), std::vector<int>{})
      << "une seule ligne est l’en-tête";
  EXPECT_EQ(lireLsof("EN-TETE\nsans adresse\na:\n:\n*:http\n*:0\n*:-5\n*:+80\n*:99999999999\na:1 b:2\n"),
            (std::vector<int>{80, 2}));
  EXPECT_EQ(lireLsof("EN-TETE\n*:7777\xff\n"), std::vector<int>{});
}

TEST(AnalyseOutils, PgrepDonneUnNumeroParLigne) {
  EXPECT_EQ(lirePgrep("  456\n\nabc\n789\n"), (std::vector<pid_t>{456, 789}));
  EXPECT_EQ(lirePgrep("+1\n-2\n+-3\n4 5\n99999999999\n\u00A06\t\n"), (std::vector<pid_t>{1, -2, 6}));
  EXPECT_EQ(lirePgrep("1\xff\n"), std::vector<pid_t>{});
}

TEST(ArbreProcessus, UneProfondeurNulleDonneUneListeVide) {
  EXPECT_EQ(descendants(1, 0), std::vector<pid_t>{});
  EXPECT_EQ(descendants(::getppid(), -1), std::vector<pid_t>{});
}

TEST(ArbreProcessus, ChaqueEnfantEstSuiviDeSaDescendanceJusquALaProfondeurDite) {
  const auto processus = socle::Processus::lancer(
      {"/bin/sh", {"-c", "sh -c 'sh -c \"sleep 1000; :\" & wait' & sleep 1000 & wait"}, "/", {}},
      [](auto) {});
  ASSERT_TRUE(processus);
  const pid_t racine = (*processus)->pid();
  ASSERT_TRUE(attendre([&] { return descendants(racine, 9).size() == 4; }));
  const auto tous = descendants(racine, 9);
  const auto enfants = descendants(racine, 1);
  ASSERT_EQ(enfants.size(), 2U);
  EXPECT_EQ(tous[0], enfants[0]);
  EXPECT_EQ(tous[1], descendants(enfants[0], 1).at(0));
  EXPECT_EQ(tous[3], enfants[1]);
  EXPECT_EQ(descendants(racine, 2).size(), 3U);
  ::kill(-racine, SIGKILL);
  EXPECT_TRUE(attendre([&] { return !(*processus)->tourne(); }));
}

// Ouvre une prise à l’écoute dans ce processus même.
struct Prise {
  explicit Prise(int famille) : numero(essais::ouvrirUnePrise(famille)) {
    sockaddr_storage adresse{};
    adresse.ss_family = static_cast<sa_family_t>(famille);
    socklen_t taille = famille == AF_INET ? sizeof(sockaddr_in) : sizeof(sockaddr_in6);
    ouverte = ::bind(numero, reinterpret_cast<sockaddr*>(&adresse), taille) == 0;
    ::getsockname(numero, reinterpret_cast<sockaddr*>(&adresse), &taille);
    port = ntohs(famille == AF_INET ? reinterpret_cast<sockaddr_in&>(adresse).sin_port
                                    : reinterpret_cast<sockaddr_in6&>(adresse).sin6_port);
  }
  Prise(const Prise&) = delete;
  Prise& operator=(const Prise&) = delete;
  ~Prise() { ::close(numero); }
  int numero;
  int port = 0;
  bool ouverte = false;
};

TEST(ArbreProcessus, LesPortsEcoutesSontCeuxDesPrisesOuvertesEnIPv4EtEnIPv6) {
  const Prise une(AF_INET);
  const Prise deux(AF_INET6);
  const Prise muette(AF_INET);
  ASSERT_TRUE(une.ouverte && deux.ouverte && muette.ouverte);
  EXPECT_EQ(portsEcoutesPar(::getpid()), std::vector<int>{});
  ASSERT_EQ(::listen(une.numero, 1), 0);
  ASSERT_EQ(::listen(deux.numero, 1), 0);
  EXPECT_EQ(portsEcoutesPar(::getpid()), (std::vector<int>{une.port, deux.port}));
  const int copie = ::dup(une.numero);
  EXPECT_EQ(portsEcoutesPar(::getpid()).size(), 2U) << "une prise doublée ne compte qu’une fois";
  ::close(copie);
}

TEST(ArbreProcessus, UnProcessusInconnuNEcouteRien) {
  EXPECT_EQ(portsEcoutesPar(-1), std::vector<int>{});
  EXPECT_EQ(portsEcoutesPar(0x7fffffff), std::vector<int>{});
  EXPECT_EQ(descendants(0x7fffffff, 3), std::vector<pid_t>{});
}

TEST(ArbreProcessus, UnZombieOuUnNumeroReattribueNEstPlusEnVie) {
  const auto moi = identifier(::getpid());
  EXPECT_TRUE(enVie(moi));
  EXPECT_FALSE(enVie({moi.pid, moi.naissance + 1}));
  const pid_t enfant = ::fork();
  if (enfant == 0) ::_exit(0);
  const auto identite = identifier(enfant);
  siginfo_t fin{};
  ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(enfant), &fin, WEXITED | WNOWAIT), 0);
  EXPECT_EQ(::kill(enfant, 0), 0);
  EXPECT_FALSE(enVie(identite));
  ::waitpid(enfant, nullptr, 0);
  EXPECT_FALSE(enVie(identite));
}

TEST(ArbreProcessus, SansDescripteurPourLeVerifierUnProcessusResteEnVie) {
  const auto moi = identifier(::getpid());
  rlimit limite{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limite), 0);
  const rlimit aucun{.rlim_cur = 0, .rlim_max = limite.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &aucun), 0);
  const bool enVieSansDescripteur = enVie(moi);
  const bool inconnuEnVie = enVie({0x7fffffff, 0});
  ::setrlimit(RLIMIT_NOFILE, &limite);
  EXPECT_TRUE(enVieSansDescripteur);
  EXPECT_FALSE(inconnuEnVie);
}

} // namespace
} // namespace keltrove::moteur
