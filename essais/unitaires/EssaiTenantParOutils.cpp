#include "MaisonTemporaire.hpp"
#include "moteur/AnalyseOutils.hpp"
#include "moteur/TenantParOutils.hpp"

#include <gtest/gtest.h>

namespace keltrove::moteur {
namespace {

// Les deux outils tels que macOS les fait écrire.
class TenantParOutils : public testing::Test {
protected:
  static constexpr int lePort = 7777;
  static constexpr uid_t notreCompte = 501;
  static constexpr const char* titresDeNetstat =
      "Active Internet connections (including servers)\n"
      "Proto Recv-Q Send-Q  Local Address          Foreign Address        (state)\n";
  static constexpr const char* titresDeLsof =
      "COMMAND   PID USER   FD   TYPE             DEVICE SIZE/OFF NODE NAME\n";

  Tenant demander(const std::string& netstat, const std::string& lsof) {
    return tenantSelonOutils(poser("netstat", netstat), poser("lsof", lsof), lePort, notreCompte);
  }
  Tenant avec(const std::string& netstat, const std::string& lsof) {
    return demander(titresDeNetstat + netstat, titresDeLsof + lsof);
  }
  std::string poser(const std::string& nom, const std::string& texte) {
    maison.ecrire(nom + ".txt", texte);
    maison.ecrireExecutable(nom, "#!/bin/sh\necho \"$*\" >\"" + maison.chemin(nom + ".demande") +
                                     "\"\ncat \"" + maison.chemin(nom + ".txt") + "\"\n");
    return maison.chemin(nom);
  }
  essais::MaisonTemporaire maison;
};

TEST_F(TenantParOutils, UnePriseQueNosProcessusTiennentEstANous) {
  EXPECT_EQ(avec("tcp4       0      0  127.0.0.1.7777         *.*                    LISTEN     \n"
                 "tcp4       0      0  127.0.0.1.7777         127.0.0.1.52100        ESTABLISHED\n"
                 "udp4       0      0  *.7777                 *.*                               \n",
                 "node      812 moi    18u  IPv4 0xa1b2c3d4e5f60718      0t0  TCP 127.0.0.1:7777 (LISTEN)\n"),
            Tenant::nousOuLAdministrateur);
  EXPECT_EQ(maison.lire("netstat.demande"), "-an -p tcp\n");
  EXPECT_EQ(maison.lire("lsof.demande"), "-nP -a -u 501 -iTCP:7777 -sTCP:LISTEN\n");
}

TEST_F(TenantParOutils, UnePriseQueNousNeTenonsPasEstDUnEtranger) {
  EXPECT_EQ(avec("tcp4       0      0  127.0.0.1.7777         *.*                    LISTEN     \n", ""),
            Tenant::etranger);
}

TEST_F(TenantParOutils, UneDesNotresAUneAutreAdresseNeProuveRien) {
  EXPECT_EQ(avec("tcp4       0      0  127.0.0.1.7777         *.*                    LISTEN     \n",
                 "node      812 moi    18u  IPv4 0x1      0t0  TCP 192.168.1.9:7777 (LISTEN)\n"),
            Tenant::etranger);
}

TEST_F(TenantParOutils, UneSortieIllisibleNeProuvePasQuElleEstANous) {
  EXPECT_EQ(avec("tcp4       0      0  127.0.0.1.7777         *.*                    LISTEN     \n",
                 "node      812 moi    18u  IPv4 0x1      0t0  TCP 127.0.0.1:7777 (LISTEN)\n\xff\n"),
            Tenant::etranger);
}

TEST_F(TenantParOutils, PersonneNYEcouteDoncUnEtranger) {
  EXPECT_EQ(avec("tcp4       0      0  127.0.0.1.77777        *.*                    LISTEN     \n"
                 "tcp4       0      0  192.168.1.9.7777       *.*                    LISTEN     \n"
                 "tcp4       0      0  127.0.0.1.7777         127.0.0.1.50112        ESTABLISHED\n",
                 ""),
            Tenant::etranger);
}

TEST_F(TenantParOutils, UnAutreSurLaMemeMachineSuffitParOuQueCeSoit) {
  const std::string laNotre =
      "tcp4       0      0  127.0.0.1.7777         *.*                    LISTEN     \n";
  const std::string tenue =
      "node      812 moi    18u  IPv4 0xa1b2c3d4e5f60718      0t0  TCP 127.0.0.1:7777 (LISTEN)\n";
  for (const char* autre :
       {"tcp6       0      0  ::1.7777               *.*                    LISTEN     \n",
        "tcp46      0      0  *.7777                 *.*                    LISTEN     \n",
        "tcp4       0      0  *.7777                 *.*                    LISTEN     \n",
        "tcp4       0      0  127.0.0.1.7777         *.*                    LISTEN     \n"})
    EXPECT_EQ(avec(laNotre + autre, tenue), Tenant::etranger) << autre;
  // La même prise, léguée à un enfant, n’en est pas deux.
  EXPECT_EQ(
      avec(laNotre + laNotre,
           tenue +
               "sh        813 moi    18u  IPv4 0xa1b2c3d4e5f60718      0t0  TCP 127.0.0.1:7777 (LISTEN)\n"),
      Tenant::etranger);
}

TEST_F(TenantParOutils, UneLigneQuiNeSeLitPasNeCompteNiPourNousNiContreNous) {
  const std::string laNotre =
      "tcp4       0      0  127.0.0.1.7777         *.*                    LISTEN     \n";
  const std::string tenue = "node      812 moi    18u  IPv4 0x1      0t0  TCP 127.0.0.1:7777 (LISTEN)\n";
  for (const char* illisible :
       {"tcp4       0      0  localhost.7777         *.*                    LISTEN     \n",
        "tcp4       0      0  127.0.0.1.*            *.*                    LISTEN     \n",
        "tcp4       0      0  7777                   *.*                    LISTEN     \n", "tcp4 7777\n"})
    EXPECT_EQ(avec(laNotre + illisible, tenue), Tenant::nousOuLAdministrateur) << illisible;
  for (const char* illisible : {"node      812 moi    18u  IPv4 0x1      0t0  TCP localhost:7777 (LISTEN)\n",
                                "node      812 moi    18u  IPv4 0x1      0t0  TCP 127.0.0.1:* (LISTEN)\n",
                                "node      812 moi    18u  IPv6 0x1      0t0  TCP [::1:7777 (LISTEN)\n",
                                "node      812 moi    18u  IPv4 0x1      0t0  TCP\n"})
    EXPECT_EQ(avec(laNotre, illisible), Tenant::etranger) << illisible;
}

TEST_F(TenantParOutils, LesPrisesDUnCompteSontSiennesChacuneUneFois) {
  const std::string ligne = "812 moi    18u  IPv4 0x1      0t0  TCP 127.0.0.1:7777 (LISTEN)\n";
  const auto prises =
      lirePrisesDeLsof(titresDeLsof + ("node      " + ligne) + "sh        " + ligne, notreCompte);
  ASSERT_EQ(prises.size(), 1U);
  EXPECT_EQ(prises[0].compte, notreCompte);
  EXPECT_EQ(prises[0].numero, "0x1");
  EXPECT_EQ(prises[0].port, lePort);
}

TEST_F(TenantParOutils, DesDeuxFamillesEtDeToutesLesAdresses) {
  EXPECT_EQ(avec("tcp46      0      0  *.7777                 *.*                    LISTEN     \n"
                 "tcp4       0      0  *.7777                 *.*                    LISTEN     \n"
                 "tcp6       0      0  ::1.7777               *.*                    LISTEN     \n",
                 "Code\\x20H 1 moi    20u  IPv6 0x1      0t0  TCP *:7777 (LISTEN)\n"
                 "node      2 moi    20u  IPv4 0x2      0t0  TCP *:7777 (LISTEN)\n"
                 "node      2 moi    21u  IPv6 0x3      0t0  TCP [::1]:7777 (LISTEN)\n"),
            Tenant::nousOuLAdministrateur);
}

TEST_F(TenantParOutils, UnOutilQuiNeDitRienDeConnuNAccusePersonne) {
  const std::string tenue = "node      812 moi    18u  IPv4 0x1      0t0  TCP 127.0.0.1:7777 (LISTEN)\n";
  EXPECT_EQ(demander("", titresDeLsof + tenue), Tenant::inconnu);
  EXPECT_EQ(demander("usage: netstat\n", titresDeLsof + tenue), Tenant::inconnu);
  EXPECT_EQ(demander(titresDeNetstat + std::string("\xff"), titresDeLsof + tenue), Tenant::inconnu);
  EXPECT_EQ(tenantSelonOutils("/nulle/part", "/nulle/part", lePort, notreCompte), Tenant::inconnu);
}

} // namespace
} // namespace keltrove::moteur
