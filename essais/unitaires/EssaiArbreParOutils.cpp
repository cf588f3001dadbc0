#include "MaisonTemporaire.hpp"
#include "Patience.hpp"
#include "moteur/ArbreParOutils.hpp"
#include "moteur/ArbreProcessus.hpp"
#include "socle/Processus.hpp"

#include <csignal>

#include <gtest/gtest.h>
#include <unistd.h>

namespace keltrove::moteur {
namespace {

using essais::attendre;
using essais::MaisonTemporaire;

constexpr const char* pgrep = "/usr/bin/pgrep";

// Un outil qui note ce qu’on lui demande, ce qu’il voit autour de lui, et imprime ce texte.
std::string poserUnOutil(const MaisonTemporaire& maison, const std::string& texte) {
  maison.ecrireExecutable("outil", "#!/bin/sh\necho \"$*\" >>\"" + maison.chemin("demandes") +
                                       "\"\necho bruit >&2\nprintf '" + texte + "'\n");
  return maison.chemin("outil");
}

TEST(ArbreParOutils, LaDescendanceSelonPgrepEstCelleQueLeSystemeDonne) {
  const auto processus = socle::Processus::lancer(
      {"/bin/sh", {"-c", "sh -c 'sh -c \"sleep 1000; :\" & wait' & sleep 1000 & wait"}, "/", {}},
      [](auto) {});
  ASSERT_TRUE(processus);
  const pid_t racine = (*processus)->pid();
  ASSERT_TRUE(attendre([&] { return descendants(racine, 9).size() == 4; }));
  for (const int profondeur : {1, 2, 3, 9})
    EXPECT_EQ(descendantsSelonPgrep(pgrep, racine, profondeur), descendants(racine, profondeur))
        << profondeur;
  ::kill(-racine, SIGKILL);
  EXPECT_TRUE(attendre([&] { return !(*processus)->tourne(); }));
}

TEST(ArbreParOutils, SansProfondeurAucunOutilNEstLance) {
  const MaisonTemporaire maison;
  const auto outil = poserUnOutil(maison, "12\\n");
  EXPECT_EQ(descendantsSelonPgrep(outil, 1, 0), std::vector<pid_t>{});
  EXPECT_EQ(descendantsSelonPgrep(outil, 1, -1), std::vector<pid_t>{});
  EXPECT_EQ(maison.lire("demandes"), "");
  EXPECT_EQ(descendantsSelonPgrep(outil, 1, 2), (std::vector<pid_t>{12, 12}));
  EXPECT_EQ(maison.lire("demandes"), "-P 1\n-P 12\n");
}

TEST(ArbreParOutils, LsofEstInterrogeSurCeSeulProcessusEtSesPlaintesSontTues) {
  const MaisonTemporaire maison;
  const auto outil = poserUnOutil(maison, "COMMAND NAME\\nnode TCP 127.0.0.1:7777 (LISTEN)\\n");
  EXPECT_EQ(portsSelonLsof(outil, 42), std::vector<int>{7777});
  EXPECT_EQ(maison.lire("demandes"), "-nP -a -p 42 -iTCP -sTCP:LISTEN\n");
}

TEST(ArbreParOutils, UnOutilQuiNeSeLancePasNeDonneRien) {
  EXPECT_EQ(descendantsSelonPgrep("/nulle/part", ::getpid(), 3), std::vector<pid_t>{});
  EXPECT_EQ(portsSelonLsof("/nulle/part", ::getpid()), std::vector<int>{});
}

TEST(ArbreParOutils, UneLongueReponseEstLueEnEntier) {
  const MaisonTemporaire maison;
  maison.ecrireExecutable("outil", "#!/bin/sh\necho EN-TETE\nseq -f '*:%g' 1 30000\n");
  EXPECT_EQ(portsSelonLsof(maison.chemin("outil"), 1).size(), 30000U);
}

} // namespace
} // namespace keltrove::moteur
