#include "fenetre/Cadre.hpp"

#include <gtest/gtest.h>

namespace keltrove::fenetre {
namespace {

const Ouverture dOrigine{.cadre = {.largeur = 1280, .hauteur = 820}, .auCentre = true};

TEST(EssaiCadre, LaPremiereFoisLaFenetreALaTailleDOrigineAuCentre) {
  EXPECT_EQ(ouverture(std::nullopt), dOrigine);
}

TEST(EssaiCadre, EnsuiteElleSeRouvreCommeOnLALaissee) {
  for (const Cadre cadre :
       {Cadre{.largeur = 720, .hauteur = 480}, Cadre{.largeur = 1000, .hauteur = 700, .agrandie = true},
        Cadre{.largeur = 32767, .hauteur = 32767}})
    EXPECT_EQ(ouverture(cadre), Ouverture{.cadre = cadre});
}

TEST(EssaiCadre, UneTailleQuAucunEcranNeMontreEstOubliee) {
  for (const Cadre cadre :
       {Cadre{}, Cadre{.largeur = 719, .hauteur = 480}, Cadre{.largeur = 720, .hauteur = 479},
        Cadre{.largeur = 32768, .hauteur = 480}, Cadre{.largeur = 720, .hauteur = 32768},
        Cadre{.largeur = -720, .hauteur = -480, .agrandie = true}})
    EXPECT_EQ(ouverture(cadre), dOrigine);
}

} // namespace
} // namespace keltrove::fenetre
