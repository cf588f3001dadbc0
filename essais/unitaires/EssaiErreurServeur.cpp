#include "moteur/ErreurServeur.hpp"

#include <gtest/gtest.h>

namespace keltrove::moteur {
namespace {

TEST(ErreurServeur, ChaqueCasASonTitreCourt) {
  EXPECT_EQ(titreCourt(CodeIntrouvable{}), "Le code de keltrove est introuvable");
  EXPECT_EQ(titreCourt(LancementImpossible{}), "Le serveur n’a pas pu démarrer");
  EXPECT_EQ(titreCourt(MortAuDemarrage{}), "Le serveur s’est arrêté aussitôt");
  EXPECT_EQ(titreCourt(PasDeReponse{}), "Le serveur ne répond pas");
  EXPECT_EQ(titreCourt(PerduEnRoute{}), "Le serveur s’est arrêté");
  EXPECT_EQ(titreCourt(NodeIntrouvable{}), "Il manque Node sur cet ordinateur");
  EXPECT_EQ(titreCourt(CodeModifie{}), "Cette copie de keltrove a été modifiée");
}

TEST(ErreurServeur, LeCodeIntrouvableListeLesCheminsDansLOrdre) {
  EXPECT_EQ(
      explication(CodeIntrouvable{{"/b", "/a é"}}),
      "L’application n’a pas retrouvé le fichier « serveur.mjs ». Elle a regardé ici :\n  • /b\n  • /a é");
  EXPECT_EQ(explication(CodeIntrouvable{}),
            "L’application n’a pas retrouvé le fichier « serveur.mjs ». Elle a regardé ici :\n");
}

TEST(ErreurServeur, LeLancementImpossibleCiteLeSystemeMemeMuet) {
  EXPECT_EQ(explication(LancementImpossible{"Permission denied"}),
            "macOS a refusé de lancer le serveur. Il dit : Permission denied");
  EXPECT_EQ(explication(LancementImpossible{""}), "macOS a refusé de lancer le serveur. Il dit : ");
}

TEST(ErreurServeur, LAbsenceDeReponseDitLesSecondesEtLePort) {
  const PasDeReponse erreur{7777, 40, ""};
  EXPECT_EQ(explication(erreur), "Le serveur a été lancé, il n’a pas planté, mais au bout de 40 secondes il "
                                 "ne répond toujours pas sur le port 7777. Ce qu’il a écrit jusque-là est "
                                 "en dessous.");
  EXPECT_EQ(journal(erreur), std::nullopt);
}

TEST(ErreurServeur, LesAutresExplicationsSontDesTextesFixes) {
  EXPECT_EQ(explication(MortAuDemarrage{"x"}), "Le serveur a démarré puis s’est arrêté tout de suite. Ce "
                                               "qu’il a écrit avant de partir est en dessous : c’est là "
                                               "que se trouve la vraie raison.");
  EXPECT_EQ(explication(PerduEnRoute{"x"}),
            "Le serveur de keltrove tournait, et il vient de s’arrêter. Les terminaux qui étaient ouverts "
            "sont fermés ; leur liste, elle, a été notée et reviendra au prochain démarrage.");
  EXPECT_EQ(
      explication(NodeIntrouvable{}),
      "keltrove a besoin du programme « Node » pour fonctionner, et il n’est nulle part sur cet ordinateur. "
      "Cette version de l’application ne l’emporte pas encore avec elle.");
  EXPECT_EQ(explication(CodeModifie{}),
            "Cette copie de keltrove a été modifiée. Réinstallez-la depuis " KELTROVE_SITE);
}

TEST(ErreurServeur, SeulsTroisCasPortentUnJournalNonVide) {
  EXPECT_EQ(journal(MortAuDemarrage{"j"}), "j");
  EXPECT_EQ(journal(PasDeReponse{1, 40, "j"}), "j");
  EXPECT_EQ(journal(PerduEnRoute{"  "}), "  ");
  EXPECT_EQ(journal(PerduEnRoute{""}), std::nullopt);
  EXPECT_EQ(journal(NodeIntrouvable{}), std::nullopt);
  EXPECT_EQ(journal(CodeModifie{}), std::nullopt);
  EXPECT_EQ(journal(CodeIntrouvable{{"/a"}}), std::nullopt);
  EXPECT_EQ(journal(LancementImpossible{"r"}), std::nullopt);
}

} // namespace
} // namespace keltrove::moteur
