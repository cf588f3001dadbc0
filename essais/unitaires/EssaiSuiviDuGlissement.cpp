#include "fenetre/SuiviDuGlissement.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace keltrove::fenetre {
namespace {

using Textes = std::vector<std::string>;

class EssaiSuivi : public testing::Test {
protected:
  static Portes fichiers() { return {.chemins = {"/a", "/b"}, .illisibles = 0}; }
  static Portes lien() { return {}; }

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
       .quitterLaVueWeb = [this] { notes.emplace_back("quitté"); },
       .deposerDansLaVueWeb = [this] { notes.emplace_back("lâché"); },
       .conclure = [this](bool remis) { notes.emplace_back(remis ? "remis" : "refusé"); },
       .ecarterDesIllisibles =
           [this](std::size_t combien) { notes.push_back(std::to_string(combien) + " illisible"); }}};
  const std::string depose = R"(dépôt {"chemins":["/a","/b"],"x":10.0,"y":20.0})";
};

TEST_F(EssaiSuivi, DesFichiersSeSurvolentPuisSeDeposent) {
  suivi.commencer();
  entrer();
  EXPECT_EQ(lues(), Textes{}) << "on ne sait pas encore ce qui se survole";
  suivi.apprendre(fichiers());
  suivi.bouger({11, 20}, {});
  EXPECT_EQ(lues(), (Textes{"survol", "survol"}));
  EXPECT_FALSE(suivi.estALaVueWeb());
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

TEST_F(EssaiSuivi, UnLienEstRenduALaVueWebQuiLeQuitteEtLeReprend) {
  suivi.commencer();
  entrer();
  suivi.apprendre(lien());
  suivi.bouger({11, 20}, {});
  EXPECT_EQ(lues(), Textes{"rendu"});
  EXPECT_TRUE(suivi.estALaVueWeb());
  EXPECT_FALSE(suivi.laPageLeVoit());
  suivi.quandLaPageRepond(true);
  EXPECT_TRUE(suivi.laPageLeVoit());
  suivi.sortir();
  EXPECT_EQ(lues(), Textes{"quitté"});
  EXPECT_FALSE(suivi.estALaVueWeb());
  EXPECT_FALSE(suivi.laPageLeVoit());
  suivi.quandLaPageRepond(true);
  EXPECT_FALSE(suivi.laPageLeVoit()) << "elle parlait d’avant";
  entrer();
  EXPECT_EQ(lues(), Textes{"rendu"});
  suivi.quandLaPageRepond(true);
  deposer();
  EXPECT_EQ(lues(), Textes{"lâché"});
  EXPECT_FALSE(suivi.survole());
  suivi.sortir(); // GTK ne le dit qu’ensuite
  suivi.commencer();
  EXPECT_EQ(lues(), Textes{});
}

TEST_F(EssaiSuivi, UnLienLacheAttendQueLaPageLAitVu) {
  for (const bool luAvant : {false, true}) {
    for (const bool depart : {false, true}) {
      suivi.commencer();
      entrer();
      if (luAvant) suivi.apprendre(lien());
      deposer();
      if (depart) suivi.sortir();
      if (!luAvant) suivi.apprendre(lien());
      EXPECT_EQ(lues(), Textes{"rendu"}) << luAvant << depart;
      EXPECT_TRUE(suivi.survole());
      suivi.quandLaPageRepond(true);
      EXPECT_EQ(lues(), Textes{"lâché"}) << luAvant << depart;
      EXPECT_FALSE(suivi.survole());
      EXPECT_FALSE(suivi.estALaVueWeb());
    }
  }
}

TEST_F(EssaiSuivi, UnLienLacheQueLaPageNeVerraPasEstRefuse) {
  const auto lacher = [this] {
    suivi.commencer();
    entrer();
    suivi.apprendre(lien());
    deposer();
    EXPECT_EQ(lues(), Textes{"rendu"});
  };
  lacher();
  suivi.quandLaPageRepond(false);
  EXPECT_EQ(lues(), (Textes{"quitté", "refusé"})) << "elle s’en est allée";
  lacher();
  suivi.interrompre();
  EXPECT_EQ(lues(), (Textes{"quitté", "refusé"})) << "elle se tait";
  lacher();
  suivi.couvrir(true);
  EXPECT_EQ(lues(), (Textes{"quitté", "refusé"})) << "elle n’est plus à l’écran";
  deposer();
  EXPECT_EQ(lues(), Textes{"refusé"});
  suivi.couvrir(false);
  lacher();
  suivi.commencer();
  EXPECT_EQ(lues(), (Textes{"quitté", "refusé"})) << "un autre vient";
  EXPECT_FALSE(suivi.survole());
}

TEST_F(EssaiSuivi, UnLienQueLaPageNeVerraPasSeSurvoleEncore) {
  suivi.commencer();
  entrer();
  suivi.apprendre(lien());
  suivi.quandLaPageRepond(false);
  EXPECT_EQ(lues(), (Textes{"rendu", "quitté"}));
  EXPECT_TRUE(suivi.survole());
  suivi.bouger({11, 20}, {});
  EXPECT_EQ(lues(), Textes{"rendu"}) << "la page d’après le verra peut-être";
}

TEST_F(EssaiSuivi, CouverteLaPagePerdLeLienPuisLeReprend) {
  suivi.commencer();
  entrer();
  suivi.apprendre(lien());
  suivi.couvrir(true);
  suivi.bouger({11, 20}, {});
  EXPECT_EQ(lues(), (Textes{"rendu", "quitté"}));
  suivi.couvrir(false);
  suivi.bouger({12, 20}, {});
  EXPECT_EQ(lues(), Textes{"rendu"});
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
  suivi.apprendre({.chemins = {}, .illisibles = 2});
  EXPECT_FALSE(suivi.estALaVueWeb()) << "un fichier reste un fichier";
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
