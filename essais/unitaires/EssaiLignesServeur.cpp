#include "moteur/LignesServeur.hpp"

#include <gtest/gtest.h>

namespace keltrove::moteur {
namespace {

using Lignes = std::vector<std::string>;

TEST(LignesServeur, UnBlocTermineParUneFinDeLigneCompteUneLigneVideDePlus) {
  LignesServeur lignes;
  lignes.noter("x\n");
  EXPECT_EQ(lignes.lignes(), (Lignes{"x", ""}));
  lignes.noter("a\nb\n");
  EXPECT_EQ(lignes.lignes(), (Lignes{"x", "", "a", "b", ""}));
}

TEST(LignesServeur, LesBlocsNeSontPasRecollesEtLeRetourChariotReste) {
  LignesServeur lignes;
  lignes.noter("un d");
  lignes.noter("eux\r\n");
  EXPECT_EQ(lignes.lignes(), (Lignes{"un d", "eux\r", ""}));
}

TEST(LignesServeur, SeulesLesSoixanteDernieresLignesRestent) {
  LignesServeur lignes;
  for (int i = 0; i < 100; ++i)
    lignes.noter(std::to_string(i));
  ASSERT_EQ(lignes.lignes().size(), 60U);
  EXPECT_EQ(lignes.lignes().front(), "40");
  EXPECT_EQ(lignes.lignes().back(), "99");
  LignesServeur juste;
  for (int i = 0; i < 60; ++i)
    juste.noter("x");
  EXPECT_EQ(juste.lignes().size(), 60U);
}

TEST(LignesServeur, UnSeulBlocTresDecoupeDonneSesSoixanteDerniersMorceaux) {
  LignesServeur lignes;
  std::string bloc;
  for (int i = 0; i < 1000; ++i)
    bloc += std::to_string(i) + "\n";
  lignes.noter("avant");
  lignes.noter(bloc);
  ASSERT_EQ(lignes.lignes().size(), 60U);
  EXPECT_EQ(lignes.lignes().front(), "941");
  EXPECT_EQ(lignes.lignes()[58], "999");
  EXPECT_EQ(lignes.lignes().back(), "");
}

TEST(LignesServeur, UnBlocQuiNEstPasEnUTF8EstEcarteEnEntier) {
  LignesServeur lignes;
  lignes.noter("bon\nmauvais \xff\n");
  EXPECT_EQ(lignes.lignes(), Lignes{});
}

TEST(LignesServeur, LeTexteEstJointPuisRogne) {
  LignesServeur lignes;
  EXPECT_EQ(lignes.texte(), "");
  lignes.noter("\n  a\n\nb \n\n");
  EXPECT_EQ(lignes.texte(), "a\n\nb");
  lignes.vider();
  EXPECT_EQ(lignes.texte(), "");
}

TEST(LignesServeur, LeMessageLePlusRecentLEmporteMemeVide) {
  LignesServeur lignes;
  EXPECT_EQ(lignes.messageDeMiseAJour(), std::nullopt);
  lignes.noter("MESSAGE=old\n");
  EXPECT_EQ(lignes.messageDeMiseAJour(), "old");
  lignes.noter("MESSAGE=  ");
  EXPECT_EQ(lignes.messageDeMiseAJour(), std::nullopt);
}

TEST(LignesServeur, LeMessageEstRogneDeSesEspaces) {
  LignesServeur lignes;
  lignes.noter("MESSAGE= Version 2 prête\t");
  lignes.noter("autre");
  lignes.noter(" MESSAGE=pas au début");
  EXPECT_EQ(lignes.messageDeMiseAJour(), "Version 2 prête");
  lignes.noter("MESSAGE=avec un retour\r");
  EXPECT_EQ(lignes.messageDeMiseAJour(), "avec un retour\r");
}

} // namespace
} // namespace keltrove::moteur
