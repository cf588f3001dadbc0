#include "BoucleVirtuelle.hpp"
#include "app/Surveillance.hpp"

#include <atomic>
#include <random>

#include <gtest/gtest.h>

namespace keltrove::app {
namespace {

// Le travail d’arrière-plan est réel : chaque tic attend que son résultat soit revenu.
class EssaiSurveillance : public testing::Test {
protected:
  void tic(bool repond) {
    reponse = repond;
    const int avant = verifications;
    boucle->avancer(6.0);
    ASSERT_TRUE(boucle->attendre([&] { return verifications > avant; }));
    // Le résultat est posté après la vérification, par le même fil.
    const int attendus = repond ? 0 : echecsAvant + 1;
    ASSERT_TRUE(boucle->attendre([&] { return surveillance.echecsDaffilee() == attendus; }));
    echecsAvant = attendus;
  }

  // La vérification suivante n’aboutit qu’une fois attendue.
  void retenirLaVerification() { passage = false; }
  void recevoirLaVerification() {
    const int avant = boucle->tachesExecutees();
    passage = true;
    passage.notify_all();
    EXPECT_TRUE(boucle->attendre([&] { return boucle->tachesExecutees() > avant; }));
  }

  std::shared_ptr<essais::BoucleVirtuelle> boucle = std::make_shared<essais::BoucleVirtuelle>();
  std::atomic<bool> reponse = true;
  std::atomic<bool> passage = true;
  std::atomic<int> verifications = 0;
  int echecsAvant = 0;
  int pertes = 0;
  Surveillance surveillance{boucle, socle::FileDeTravail("essai", 1),
                            [this] {
                              passage.wait(false);
                              const bool valeur = reponse;
                              ++verifications;
                              return valeur;
                            },
                            [this] { ++pertes; }};
};

TEST_F(EssaiSurveillance, LePremierRegardALieuSixSecondesApresLeDebut) {
  surveillance.demarrer();
  boucle->avancer(5.99);
  EXPECT_EQ(verifications, 0);
  boucle->avancer(0.01);
  EXPECT_TRUE(boucle->attendre([&] { return verifications == 1; }));
}

// Plus d’un jour de regards, aux échecs tirés au hasard mais toujours les mêmes.
TEST_F(EssaiSurveillance, UneJourneeDeRegardsNeSeTrompeJamais) {
  std::mt19937 hasard(20261121);
  std::bernoulli_distribution echoue(0.3);
  int daffilee = 0;
  int pertesAttendues = 0;
  surveillance.demarrer();
  for (int i = 0; i < 15'000; ++i) {
    const bool repond = !echoue(hasard);
    tic(repond);
    daffilee = repond ? 0 : daffilee + 1;
    if (daffilee == 3) {
      ++pertesAttendues;
      daffilee = 0;
      echecsAvant = 0;
    }
    ASSERT_EQ(pertes, pertesAttendues) << "au regard " << i;
    ASSERT_EQ(surveillance.active(), daffilee != 0 || repond) << "au regard " << i;
    if (!surveillance.active()) surveillance.demarrer();
  }
  EXPECT_GT(pertesAttendues, 100);
}

TEST_F(EssaiSurveillance, TroisEchecsDeSuiteLArretentEtPreviennentUneFois) {
  surveillance.demarrer();
  tic(false);
  tic(false);
  EXPECT_EQ(pertes, 0);
  EXPECT_TRUE(surveillance.active());
  tic(false);
  EXPECT_EQ(pertes, 1);
  EXPECT_FALSE(surveillance.active());
  EXPECT_DOUBLE_EQ(boucle->maintenant(), 18.0);
  boucle->avancer(60);
  EXPECT_EQ(verifications, 3);
  EXPECT_EQ(pertes, 1);
}

TEST_F(EssaiSurveillance, DeuxEchecsPuisUnSuccesRemettentLeCompteAZero) {
  surveillance.demarrer();
  tic(false);
  tic(false);
  tic(true);
  EXPECT_TRUE(surveillance.active());
  EXPECT_EQ(surveillance.echecsDaffilee(), 0);
  tic(false);
  tic(false);
  EXPECT_EQ(pertes, 0);
}

TEST_F(EssaiSurveillance, UnResultatArriveApresLArretEstIgnore) {
  surveillance.demarrer();
  tic(false);
  tic(false);
  retenirLaVerification();
  boucle->avancer(6.0);
  surveillance.arreter();
  recevoirLaVerification();
  EXPECT_EQ(verifications, 3);
  EXPECT_EQ(pertes, 0);
  EXPECT_EQ(surveillance.echecsDaffilee(), 2);
}

TEST_F(EssaiSurveillance, RedemarrerRemetLeCompteAZeroEtRepousseLeRegard) {
  surveillance.demarrer();
  tic(false);
  boucle->avancer(5);
  surveillance.demarrer();
  EXPECT_EQ(surveillance.echecsDaffilee(), 0);
  boucle->avancer(5);
  EXPECT_EQ(verifications, 1);
}

TEST_F(EssaiSurveillance, UnResultatTardifComptePourLaNouvelleSurveillance) {
  surveillance.demarrer();
  reponse = false;
  retenirLaVerification();
  boucle->avancer(6.0);
  surveillance.demarrer();
  recevoirLaVerification();
  EXPECT_EQ(surveillance.echecsDaffilee(), 1);
}

TEST_F(EssaiSurveillance, DetruireLaSurveillanceAnnuleSonMinuteur) {
  {
    Surveillance breve(boucle, socle::FileDeTravail("essai", 1), [] { return true; }, [] {});
    breve.demarrer();
    EXPECT_EQ(boucle->minuteursEnAttente(), 1U);
  }
  EXPECT_EQ(boucle->minuteursEnAttente(), 0U);
}

} // namespace
} // namespace keltrove::app
