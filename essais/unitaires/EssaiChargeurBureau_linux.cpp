#include "MaisonTemporaire.hpp"
#include "app/ChargeurBureau.hpp"

#include <gtest/gtest.h>

namespace keltrove::app {
namespace {

TEST(EssaiChargeurBureau, SansModuleLaPhraseDitLequelManque) {
  const essais::MaisonTemporaire maison;
  const auto lancer = chargerLeBureau(maison.chemin("keltrove"));
  ASSERT_FALSE(lancer);
  EXPECT_EQ(lancer.error(),
            "Keltrove ne peut pas ouvrir sa fenêtre : le fichier libkeltrove-bureau.so manque à côté "
            "de l’application. Réinstallez-la.");
}

TEST(EssaiChargeurBureau, UnModuleIllisibleDonneSaRaison) {
  const essais::MaisonTemporaire maison;
  maison.ecrire("bin/libkeltrove-bureau.so", "ceci n’est pas un module");
  const auto lancer = chargerLeBureau(maison.chemin("bin/keltrove"));
  ASSERT_FALSE(lancer);
  EXPECT_TRUE(lancer.error().starts_with(
      "Keltrove ne peut pas ouvrir sa fenêtre : une bibliothèque du bureau manque ou ne convient pas (" +
      maison.chemin("bin/")))
      << lancer.error();
  EXPECT_TRUE(lancer.error().contains("libkeltrove-bureau.so: file too short")) << lancer.error();
  EXPECT_TRUE(lancer.error().ends_with("). Réinstallez l’application.")) << lancer.error();
}

TEST(EssaiChargeurBureau, LeModuleInstalleEstSousLib) {
  const essais::MaisonTemporaire maison;
  maison.ecrire("lib/keltrove/libkeltrove-bureau.so", "");
  maison.ecrire("bin/keltrove", "");
  const auto lancer = chargerLeBureau(maison.chemin("bin/keltrove"));
  ASSERT_FALSE(lancer);
  EXPECT_TRUE(lancer.error().contains("lib/keltrove/libkeltrove-bureau.so")) << lancer.error();
}

} // namespace
} // namespace keltrove::app
