#include "fenetre/APropos.hpp"

#include <gtest/gtest.h>

namespace keltrove::fenetre {
namespace {

using socle::Journal::Details;

TEST(EssaiAPropos, DitLeNomLaVersionLObjetEtLaLicence) {
  EXPECT_STREQ(APropos::nom, "Keltrove");
  EXPECT_STREQ(APropos::version, "Version " KELTROVE_VERSION);
  EXPECT_STREQ(APropos::objet, "Une fenêtre native pour votre page de terminaux.");
  EXPECT_STREQ(APropos::licence,
               "Logiciel libre, sous licence MIT : vous pouvez l’utiliser, le modifier et le partager, "
               "sans garantie d’aucune sorte.");
}

TEST(EssaiAPropos, LeJournalDitLaVersionLeSystemePuisChaqueEtape) {
  const std::vector<Details> etapes{
      {{"etape", "demarrage-demande"}, {"seconde", 0.0}},
      {{"etape", "sante"}, {"seconde", 12.5}, {"version", "1.2"}, {"carnet", std::int64_t{3}}},
  };
  EXPECT_EQ(APropos::journal("Debian 12", etapes, std::nullopt),
            "Keltrove " KELTROVE_VERSION "\n"
            "Debian 12\n"
            "     0.00 s  demarrage-demande\n"
            "    12.50 s  sante  carnet=3 version=1.2\n");
}

TEST(EssaiAPropos, LeJetonNeParaitJamais) {
  const std::vector<Details> etapes{
      {{"etape", "page-contenu"}, {"seconde", 1.0}, {"titre", "voici s3cr3t, et s3cr3ts3cr3t"}}};
  const auto texte = APropos::journal("", etapes, "s3cr3t");
  EXPECT_FALSE(texte.contains("s3cr3t")) << texte;
  EXPECT_TRUE(texte.contains("titre=voici …, et ……\n")) << texte;
}

TEST(EssaiAPropos, UnJetonQuiRessembleASonMasqueNArretePasLaLecture) {
  const std::vector<Details> etapes{{{"etape", "page-contenu"}, {"seconde", 1.0}, {"titre", "voici…"}}};
  EXPECT_TRUE(APropos::journal("", etapes, "…").ends_with("titre=voici…\n"));
}

TEST(EssaiAPropos, UnJetonVideNeMasqueRien) {
  const std::vector<Details> etapes{{{"etape", "allume"}, {"seconde", 1.0}}};
  EXPECT_EQ(APropos::journal("", etapes, ""), APropos::journal("", etapes, std::nullopt));
}

TEST(EssaiAPropos, DesOctetsIllisiblesNeGatentPasLeJournal) {
  const std::vector<Details> etapes{{{"etape", "page-ratee"}, {"seconde", 1.0}, {"raison", "caf\xe9"}}};
  EXPECT_TRUE(APropos::journal("", etapes, std::nullopt).contains("raison=caf\xEF\xBF\xBD\n"));
}

} // namespace
} // namespace keltrove::fenetre
