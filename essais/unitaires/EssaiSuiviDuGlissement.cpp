#include "fenetre/SuiviDuGlissement.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace keltrove::fenetre {
namespace {

using Textes = std::vector<std::string>;

class EssaiSuivi : public testing::Test {
protected:
  static Portes fichiers() {
    return {.chemins = {"/a", "/b"}, .illisibles = 0, .adresses = "file:///a\nfile:///b"};
  }
  static Portes lien() { return {.chemins = {}, .illisibles = 0, .adresses = "http://a.test/"}; }

  void entrer() { suivi.entrer({10, 20}, {}); }
  void deposer() { suivi.deposer({10, 20}, {}); }
  Textes lues() { return std::exchange(notes, {}); }

  Textes notes;
  std::vector<nlohmann::json> survols;
  SuiviDuGlissement suivi{
      {.appelerLaPage =
           [this](const char* corps, const nlohmann::json& arguments) {
             const std::string texte = corps;
             if (texte.contains("Survol") && !texte.contains("null")) survols.push_back(arguments);
             notes.push_back(texte.contains("null")     ? "fin du survol"
                             : texte.contains("Survol") ? "survol"
                                                        : "dépôt " + arguments.dump());
           },
       .rendreALaVueWeb = [this] { notes.emplace_back("rendu"); },
       .conclure = [this](bool remis) { notes.emplace_back(remis ? "remis" : "refusé"); },
       .ecarterDesIllisibles =
           [this](std::size_t combien) { notes.push_back(std::to_string(combien) + " illisible"); }}};
  const std::string depose = R"(dépôt {"chemins":["/a","/b"],"x":10.0,"y":20.0})";
  const std::string lienDepose = R"(dépôt {"adresses":"http://a.test/","x":10.0,"y":20.0})";
};

TEST_F(EssaiSuivi, DesFichiersSeSurvolentPuisSeDeposent) {
  suivi.commencer();
  entrer();
  EXPECT_EQ(lues(), Textes{}) << "on ne sait pas encore ce qui se survole";
  suivi.apprendre(fichiers());
  suivi.bouger({11, 20}, {});
  EXPECT_EQ(lues(), (Textes{"survol", "survol"}));
  EXPECT_TRUE(suivi.estANous());
  deposer();
  EXPECT_EQ(lues(), (Textes{"survol", depose, "remis"}));
  EXPECT_FALSE(suivi.survole());
}

TEST_F(EssaiSuivi, SurvolsEtDepotSontOuEstLaSourisDansLaPage) {
  suivi.commencer();
  entrer();
  suivi.apprendre(fichiers());
  suivi.bouger({11, 21}, {.agrandissement = 2});
  suivi.sortir();
  suivi.entrer({30, 40}, {});
  EXPECT_EQ(survols, (std::vector<nlohmann::json>{
                         {{"x", 10.0}, {"y", 20.0}}, {{"x", 5.5}, {"y", 10.5}}, {{"x", 30.0}, {"y", 40.0}}}));
  lues();
  suivi.deposer({50, 60}, {.agrandissement = 2});
  EXPECT_EQ(lues(), (Textes{"survol", R"(dépôt {"chemins":["/a","/b"],"x":25.0,"y":30.0})", "remis"}));
}

TEST_F(EssaiSuivi, UnDepotPlusRapideQueLaLectureAttendEtUnDepartEntreLesDeuxNyChangeRien) {
  for (const bool depart : {false, true}) {
    suivi.commencer();
    entrer();
    deposer();
    if (depart) suivi.sortir();
    EXPECT_EQ(lues(), Textes{});
    suivi.apprendre(fichiers());
    EXPECT_EQ(lues(), (Textes{"survol", depose, "remis"})) << depart;
  }
}

TEST_F(EssaiSuivi, UnDepartJusteAvantLeDepotNeLePerdPas) {
  suivi.commencer();
  entrer();
  suivi.apprendre(fichiers());
  suivi.sortir();
  EXPECT_FALSE(suivi.survole());
  deposer();
  EXPECT_EQ(lues(), (Textes{"survol", "fin du survol", "survol", depose, "remis"}));
}

TEST_F(EssaiSuivi, UnLienEstRenduALaVueWeb) {
  suivi.commencer();
  entrer();
  suivi.apprendre(lien());
  EXPECT_FALSE(suivi.estANous());
  EXPECT_EQ(lues(), Textes{"rendu"});
  suivi.sortir();
  EXPECT_EQ(lues(), Textes{});
}

TEST_F(EssaiSuivi, UnLienLacheAvantDAvoirEteRenduArriveQuandMeme) {
  suivi.commencer();
  entrer();
  deposer();
  suivi.apprendre(lien());
  EXPECT_EQ(lues(), (Textes{lienDepose, "remis"})) << "lâché avant d’être lu";
  suivi.commencer();
  entrer();
  suivi.apprendre(lien());
  deposer();
  EXPECT_EQ(lues(), (Textes{"rendu", lienDepose, "remis"})) << "lâché avant que la vue web ne le prenne";
  suivi.commencer();
  entrer();
  deposer();
  suivi.apprendre({});
  EXPECT_EQ(lues(), Textes{"refusé"}) << "rien qui se lise";
}

TEST_F(EssaiSuivi, UnNomIllisibleNEmpecheQueLuiEtSeDit) {
  suivi.commencer();
  entrer();
  auto portes = fichiers();
  portes.illisibles = 1;
  suivi.apprendre(portes);
  deposer();
  EXPECT_EQ(lues(), (Textes{"survol", "survol", depose, "1 illisible", "remis"}));
  suivi.commencer();
  entrer();
  suivi.apprendre({.chemins = {}, .illisibles = 2, .adresses = "file:///%FF"});
  EXPECT_TRUE(suivi.estANous()) << "un fichier reste un fichier";
  deposer();
  EXPECT_EQ(lues(), (Textes{"2 illisible", "refusé"}));
}

TEST_F(EssaiSuivi, UnGlissementMortFinitSonSurvolUneFois) {
  suivi.commencer();
  entrer();
  suivi.apprendre(fichiers());
  lues();
  suivi.interrompre();
  EXPECT_FALSE(suivi.survole());
  EXPECT_EQ(lues(), Textes{"fin du survol"});
  suivi.sortir(); // GTK ne le dit qu’ensuite
  suivi.commencer();
  EXPECT_EQ(lues(), Textes{});
}

TEST_F(EssaiSuivi, LeSuivantFinitLeSurvolEtLeDepotQuUnAutreALaisses) {
  suivi.commencer();
  entrer();
  suivi.apprendre(fichiers());
  lues();
  suivi.commencer();
  EXPECT_EQ(lues(), Textes{"fin du survol"});
  entrer();
  deposer();
  suivi.commencer();
  EXPECT_EQ(lues(), Textes{"refusé"});
  entrer();
  suivi.apprendre(fichiers());
  EXPECT_EQ(lues(), Textes{"survol"}) << "rien n’a encore été lâché";
}

TEST_F(EssaiSuivi, LaPageCouverteNeRecoitPlusRienPuisReprend) {
  suivi.commencer();
  entrer();
  suivi.apprendre(fichiers());
  lues();
  suivi.couvrir(true);
  EXPECT_EQ(lues(), Textes{"fin du survol"});
  suivi.bouger({11, 20}, {});
  deposer();
  EXPECT_EQ(lues(), Textes{"refusé"});
  suivi.commencer();
  entrer();
  suivi.apprendre(fichiers());
  suivi.couvrir(false);
  suivi.bouger({11, 20}, {});
  EXPECT_EQ(lues(), Textes{"survol"});
}

} // namespace
} // namespace keltrove::fenetre
