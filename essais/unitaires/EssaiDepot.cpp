#include "fenetre/VueWebDepot.hpp"

#include <utility>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace keltrove::fenetre {
namespace {

using Appel = std::pair<std::string, nlohmann::json>;
using Reponse = VueWebDepot::Reponse;

const std::string survol = "if (window.keltroveSurvolChemins) window.keltroveSurvolChemins(x, y);";
const Appel finDuSurvol{"if (window.keltroveSurvolChemins) window.keltroveSurvolChemins(null, null);",
                        nlohmann::json::object()};
const std::string depot = "if (window.keltroveDeposerChemins) window.keltroveDeposerChemins(chemins, x, y);";

class EssaiDepot : public testing::Test {
protected:
  static Glissement fichiers(double x = 10, double y = 20) {
    return {.chemins = {"/a b", "/é'\"%\n", "/c"}, .point = {x, y}};
  }
  static Glissement texte() { return {.point = {10, 20}}; }
  static Appel survolEn(double x, double y) { return {survol, {{"x", x}, {"y", y}}}; }

  std::vector<Appel> appels;
  VueWebDepot vue{
      [this](const char* corps, const nlohmann::json& arguments) { appels.emplace_back(corps, arguments); }};
};

TEST(EssaiPointDansLaPage, ZoomEtAgrandissementDivisentLePoint) {
  const auto point = pointDansLaPage({200, 100}, {.zoom = 2, .agrandissement = 1});
  EXPECT_EQ(point.x, 100);
  EXPECT_EQ(point.y, 50);
  EXPECT_EQ(pointDansLaPage({200, 100}, {.zoom = 2, .agrandissement = 2}).x, 50);
}

TEST(EssaiPointDansLaPage, UneEchelleNulleOuMinusculeDiviseParUnCentieme) {
  for (const double zoom : {0.0, 0.001, 0.01, -3.0}) {
    const auto point = pointDansLaPage({2, 1}, {.zoom = zoom});
    EXPECT_DOUBLE_EQ(point.x, 200) << zoom;
    EXPECT_DOUBLE_EQ(point.y, 100) << zoom;
  }
  EXPECT_DOUBLE_EQ(pointDansLaPage({2, 1}, {.zoom = 0.02}).x, 100);
}

TEST(EssaiPointDansLaPage, UneVueCompteeDuBasEstRetournee) {
  EXPECT_EQ(pointDansLaPage({0, 100}, {.hauteur = 820, .origineEnHaut = false, .zoom = 2}).y, 360);
  EXPECT_EQ(pointDansLaPage({0, 100}, {.hauteur = 820, .zoom = 2}).y, 50);
}

TEST_F(EssaiDepot, LaMarqueEstPoseeAvantTouteChose) {
  EXPECT_STREQ(VueWebDepot::scriptDOuverture, "window.keltroveApp = Object.freeze({ depotChemins: true });");
}

TEST_F(EssaiDepot, SansFichierToutRevientALaVueWebEtLaPageNeVoitRien) {
  EXPECT_FALSE(vue.glisserDeFichiers());
  EXPECT_EQ(vue.draggingEntered(texte()), Reponse::commeLaVueWeb);
  EXPECT_EQ(vue.draggingUpdated(texte()), Reponse::commeLaVueWeb);
  EXPECT_EQ(vue.prepareForDragOperation(), Reponse::commeLaVueWeb);
  EXPECT_EQ(vue.performDragOperation(texte()), std::nullopt);
  EXPECT_EQ(vue.concludeDragOperation(), Reponse::commeLaVueWeb);
  EXPECT_EQ(vue.draggingExited(), Reponse::commeLaVueWeb);
  vue.draggingEnded();
  EXPECT_EQ(appels, std::vector<Appel>{});
}

TEST_F(EssaiDepot, LesFichiersSontSurvolesPuisDeposesDansLeurOrdreUneSeuleFois) {
  EXPECT_EQ(vue.draggingEntered(fichiers()), Reponse::copie);
  EXPECT_TRUE(vue.glisserDeFichiers());
  EXPECT_EQ(vue.draggingUpdated(fichiers(30, 40)), Reponse::copie);
  EXPECT_EQ(vue.prepareForDragOperation(), Reponse::copie);
  auto glissement = fichiers(200, 100);
  glissement.vue.zoom = 2;
  EXPECT_EQ(vue.performDragOperation(glissement), true);
  EXPECT_TRUE(vue.glisserDeFichiers()) << "jusqu’à la conclusion";
  EXPECT_EQ(vue.concludeDragOperation(), Reponse::copie);
  EXPECT_FALSE(vue.glisserDeFichiers());
  vue.draggingEnded();
  const Appel depose{depot, {{"chemins", {"/a b", "/é'\"%\n", "/c"}}, {"x", 100.0}, {"y", 50.0}}};
  EXPECT_EQ(appels, (std::vector<Appel>{survolEn(10, 20), survolEn(30, 40), depose}))
      << "aucune fin de survol après un dépôt";
}

TEST_F(EssaiDepot, SortirLeDitUneFois) {
  vue.draggingEntered(fichiers());
  EXPECT_EQ(vue.draggingExited(), Reponse::copie);
  EXPECT_EQ(vue.draggingExited(), Reponse::commeLaVueWeb);
  vue.draggingEnded();
  EXPECT_EQ(appels, (std::vector<Appel>{survolEn(10, 20), finDuSurvol}));
}

TEST_F(EssaiDepot, UnGlissementFiniAilleursLeDitUneFois) {
  vue.draggingEntered(fichiers());
  vue.draggingEnded();
  vue.draggingEnded();
  EXPECT_EQ(appels, (std::vector<Appel>{survolEn(10, 20), finDuSurvol}));
  EXPECT_FALSE(vue.glisserDeFichiers());
}

TEST_F(EssaiDepot, ChaqueEntreeDecideANouveau) {
  vue.draggingEntered(fichiers());
  EXPECT_EQ(vue.draggingEntered(texte()), Reponse::commeLaVueWeb);
  EXPECT_EQ(vue.performDragOperation(fichiers()), std::nullopt);
  EXPECT_EQ(vue.draggingEntered(fichiers(1, 2)), Reponse::copie);
  EXPECT_EQ(appels, (std::vector<Appel>{survolEn(10, 20), survolEn(1, 2)}));
}

TEST_F(EssaiDepot, UnDepotDontLesFichiersOntDisparuRepondNonMaisLePasse) {
  vue.draggingEntered(fichiers());
  EXPECT_EQ(vue.performDragOperation(texte()), false);
  const Appel vide{depot, {{"chemins", nlohmann::json::array()}, {"x", 10.0}, {"y", 20.0}}};
  EXPECT_EQ(appels.back(), vide);
}

} // namespace
} // namespace keltrove::fenetre
