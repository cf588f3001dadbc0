#include "MaisonTemporaire.hpp"
#include "socle/Reglages.hpp"

#include <cmath>
#include <cstdlib>
#include <limits>

#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace keltrove::socle::Reglages {
namespace {

class EssaiReglages : public testing::Test {
protected:
  EssaiReglages() {
    for (const auto* variable : {"KELTROVE_ESSAI", "KELTROVE_DISCRET", "KELTROVE_ESSAI_QUITTER"})
      ::unsetenv(variable);
  }
  void ecrireLesReglages(std::string_view contenu) const { maison_.ecrire(".zelcor/keltrove.json", contenu); }
  void ecrireLeJeton(std::string_view contenu) const { maison_.ecrire(".zelcor/keltrove-jeton", contenu); }
  int portPour(std::string_view contenu) const {
    ecrireLesReglages(contenu);
    return portSouhaite();
  }
  static double secondesPour(const char* valeur) {
    ::setenv("KELTROVE_ESSAI", "1", 1);
    ::setenv("KELTROVE_ESSAI_QUITTER", valeur, 1);
    return secondesAvantAuToQuitter();
  }
  essais::MaisonTemporaire maison_;
};

TEST_F(EssaiReglages, UneMaisonVideOuAbsenteEstCelleDuCompte) {
  const std::string duCompte = ::getpwuid(::getuid())->pw_dir;
  ::setenv("HOME", "", 1);
  EXPECT_EQ(maison(), duCompte);
  ::unsetenv("HOME");
  EXPECT_EQ(maison(), duCompte);
}

TEST_F(EssaiReglages, LesCheminsNOntJamaisDeuxBarres) {
  ::setenv("HOME", "/h/", 1);
  EXPECT_EQ(cheminJeton(), "/h/.zelcor/keltrove-jeton");
  EXPECT_EQ(cheminEtatEssai(), "/h/.zelcor/keltrove-app-etat.json");
  EXPECT_EQ(dossierKeltroveInstalle(), "/h/.zelcor/it/keltrove");
}

TEST_F(EssaiReglages, LesModesNAcceptentQueUn) {
  EXPECT_FALSE(modeEssai());
  EXPECT_FALSE(modeDiscret());
  for (const auto* autre : {"true", "yes", " 1", "01", "", "1 ", "2"}) {
    ::setenv("KELTROVE_ESSAI", autre, 1);
    ::setenv("KELTROVE_DISCRET", autre, 1);
    EXPECT_FALSE(modeEssai()) << autre;
    EXPECT_FALSE(modeDiscret()) << autre;
  }
  ::setenv("KELTROVE_ESSAI", "1", 1);
  ::setenv("KELTROVE_DISCRET", "1", 1);
  EXPECT_TRUE(modeEssai());
  EXPECT_TRUE(modeDiscret());
}

TEST_F(EssaiReglages, LHeureDeFermetureSeLitCommeUnNombreEnLangueC) {
  EXPECT_EQ(secondesPour("2.5"), 2.5);
  EXPECT_EQ(secondesPour("1e1"), 10);
  EXPECT_EQ(secondesPour("+3"), 3);
  EXPECT_EQ(secondesPour("0x10"), 16);
  EXPECT_EQ(secondesPour("1e308"), 1e308);
  EXPECT_EQ(secondesPour("inf"), std::numeric_limits<double>::infinity());
  for (const auto* refusee : {"", " 5", "\t5", "5s", "5 ", "2,5", "0", "-0", "-3", "nan", "abc", "-inf"})
    EXPECT_EQ(secondesPour(refusee), 0) << refusee;
}

TEST_F(EssaiReglages, HorsDuModeEssaiLHeureDeFermetureEstNulle) {
  ::setenv("KELTROVE_ESSAI_QUITTER", "5", 1);
  EXPECT_EQ(secondesAvantAuToQuitter(), 0);
  ::setenv("KELTROVE_ESSAI", "1", 1);
  EXPECT_EQ(secondesAvantAuToQuitter(), 5);
  ::unsetenv("KELTROVE_ESSAI_QUITTER");
  EXPECT_EQ(secondesAvantAuToQuitter(), 0);
}

TEST_F(EssaiReglages, LeJetonEstRogneDesBlancsQuiLEntourent) {
  EXPECT_EQ(jeton(), std::nullopt);
  ecrireLeJeton("\n  abc  \n");
  EXPECT_EQ(jeton(), "abc");
  ecrireLeJeton("\u00A0a b\u2028\r\n");
  EXPECT_EQ(jeton(), "a b");
  ecrireLeJeton(" \n\t ");
  EXPECT_EQ(jeton(), std::nullopt);
  ecrireLeJeton("");
  EXPECT_EQ(jeton(), std::nullopt);
  ecrireLeJeton("abc\xff");
  EXPECT_EQ(jeton(), std::nullopt);
}

TEST_F(EssaiReglages, LePortEstUnEntierDeUnA65535) {
  EXPECT_EQ(portPour(R"({"port": 65535})"), 65535);
  EXPECT_EQ(portPour(R"({"port": 1, "autre": [1]})"), 1);
  EXPECT_EQ(portPour(R"({"port": 8080.0})"), 8080);
  EXPECT_EQ(portPour(R"({"port": 8.08e3})"), 8080);
}

TEST_F(EssaiReglages, ToutAutrePortDonneCeluiParDefaut) {
  for (const auto* contenu : {R"({"port": 65536})",
                              R"({"port": 0})",
                              R"({"port": -1})",
                              R"([8080])",
                              R"({"port": "8080"})",
                              R"({"port": 8080.5})",
                              R"({"port": true})",
                              R"({"port": null})",
                              R"({"port": 1e400})",
                              R"({"port": 18446744073709551615})",
                              R"({})",
                              R"({"Port": 8080})",
                              "\xEF\xBB\xBF{\"port\": 8080}",
                              R"({"port": 8080, "x": "\ud800"})",
                              "{\"port\": 8080, \"x\": \"\xFF\"}",
                              R"({"port": 8080} x)",
                              R"({"port": 8080,})",
                              R"(// non
{"port": 8080})",
                              "",
                              "null",
                              "8080",
                              "{",
                              "\xff"})
    EXPECT_EQ(portPour(contenu), 7777) << contenu;
  EXPECT_EQ(portPour(std::string_view("{\"port\": 8080}\0", 15)), 7777);
}

TEST_F(EssaiReglages, SansFichierDeReglagesLePortEstCeluiParDefaut) {
  maison_.effacer(".zelcor");
  EXPECT_EQ(portSouhaite(), 7777);
}

// Ce qui n’est pas un fichier ordinaire de taille raisonnable ne bloque ni ne remplit la mémoire.
TEST_F(EssaiReglages, UnFichierEnormeUnDossierUnTubeOuUnPeripheriqueDonnentLesValeursParDefaut) {
  const auto reglages = maison_.chemin(".zelcor/keltrove.json");
  const auto chemin = maison_.chemin(".zelcor/keltrove-jeton");
  const auto verifier = [&](const char* quoi) {
    EXPECT_EQ(portSouhaite(), 7777) << quoi;
    EXPECT_EQ(jeton(), std::nullopt) << quoi;
    ::remove(reglages.c_str());
    ::remove(chemin.c_str());
  };
  ecrireLesReglages(R"({"port": 8080, "x": ")" + std::string(5 << 20, 'x') + "\"}");
  ecrireLeJeton(std::string(5 << 20, 'x'));
  verifier("énorme");
  for (const auto& fichier : {reglages, chemin})
    ASSERT_EQ(::mkdir(fichier.c_str(), 0700), 0);
  verifier("dossier");
  for (const auto& fichier : {reglages, chemin})
    ASSERT_EQ(::mkfifo(fichier.c_str(), 0600), 0);
  verifier("tube");
  for (const auto& fichier : {reglages, chemin})
    ASSERT_EQ(::symlink("/dev/zero", fichier.c_str()), 0);
  verifier("périphérique");
  ecrireLesReglages(std::string(500'000, '['));
  verifier("imbriqué");
}

TEST_F(EssaiReglages, RienNEstGardeEnMemoire) {
  EXPECT_EQ(portPour(R"({"port": 1000})"), 1000);
  EXPECT_EQ(portPour(R"({"port": 2000})"), 2000);
}

} // namespace
} // namespace keltrove::socle::Reglages
