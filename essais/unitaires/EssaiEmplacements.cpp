#include "MaisonTemporaire.hpp"
#include "moteur/Emplacements.hpp"

#include <filesystem>

#include <gtest/gtest.h>

namespace keltrove::moteur {
namespace {

class EssaiEmplacements : public testing::Test {
protected:
  std::string ressource(std::string_view nom) const {
    return maison.chemin("ressources/" + std::string(nom));
  }

  essais::MaisonTemporaire maison;
  const std::vector<std::string> nodes = {maison.chemin("usr/local/bin/node"), maison.chemin("opt/bin/node")};
  const Emplacements emplacements{maison.chemin("ressources"), nodes};
};

TEST_F(EssaiEmplacements, UnScriptSansDroitDExecutionEstIgnore) {
  maison.ecrire("ressources/demarrer-keltrove.sh", "#!/bin/sh\n");
  EXPECT_EQ(emplacements.porteDuLotB(), std::nullopt);
  EXPECT_EQ(emplacements.commandeDeDemarrage(), std::nullopt);
  maison.ecrireExecutable("usr/local/bin/node", "");
  maison.ecrire("ressources/keltrove/serveur.mjs", "");
  EXPECT_EQ(emplacements.commandeDeDemarrage(),
            (CommandeDemarrage{nodes[0], {ressource("keltrove/serveur.mjs")}, ressource("keltrove")}));
}

TEST_F(EssaiEmplacements, LeScriptPasseAvantToutMemeSansNode) {
  maison.ecrireExecutable("ressources/demarrer-keltrove.sh", "#!/bin/sh\n");
  EXPECT_EQ(emplacements.node(), std::nullopt);
  EXPECT_EQ(emplacements.commandeDeDemarrage(),
            (CommandeDemarrage{ressource("demarrer-keltrove.sh"), {}, maison.chemin("ressources")}));
}

TEST_F(EssaiEmplacements, UnDossierNommeNodeCedeAuProgrammeQuIlContient) {
  maison.ecrireExecutable("usr/local/bin/node", "");
  maison.ecrireExecutable("ressources/node/bin/node", "");
  EXPECT_EQ(emplacements.node(), ressource("node/bin/node"));
  maison.effacer("ressources/node");
  maison.ecrireExecutable("ressources/node", "");
  EXPECT_EQ(emplacements.node(), ressource("node"));
}

TEST_F(EssaiEmplacements, LePremierNodeDuSystemeDansLOrdreLEmporte) {
  maison.ecrireExecutable("opt/bin/node", "");
  EXPECT_EQ(emplacements.node(), nodes[1]);
  maison.ecrireExecutable("usr/local/bin/node", "");
  EXPECT_EQ(emplacements.node(), nodes[0]);
  EXPECT_EQ(Emplacements::nodesDuSysteme,
            (std::vector<std::string>{"/usr/local/bin/node", "/opt/homebrew/bin/node", "/usr/bin/node"}));
}

TEST_F(EssaiEmplacements, LeServeurDesRessourcesPasseAvantCeluiDeLaMaison) {
  const auto installe = maison.chemin(".zelcor/it/keltrove/serveur.mjs");
  EXPECT_EQ(emplacements.serveur(), std::nullopt);
  std::filesystem::create_directories(installe); // un dossier de ce nom compte aussi
  EXPECT_EQ(emplacements.serveur(), installe);
  maison.ecrire("ressources/keltrove/serveur.mjs", "");
  EXPECT_EQ(emplacements.serveur(), ressource("keltrove/serveur.mjs"));
}

TEST_F(EssaiEmplacements, LesCheminsEssayesNeVerifientRien) {
  const auto installe = maison.chemin(".zelcor/it/keltrove/serveur.mjs");
  EXPECT_EQ(emplacements.cheminsEssayesPourLeServeur(),
            (std::vector{ressource("keltrove/serveur.mjs"), installe}));
  EXPECT_EQ(Emplacements(std::nullopt).cheminsEssayesPourLeServeur(), std::vector{installe});
}

TEST_F(EssaiEmplacements, SansRessourcesConnuesLeursCandidatsSontOmis) {
  const Emplacements sans(std::nullopt, nodes);
  EXPECT_EQ(sans.porteDuLotB(), std::nullopt);
  EXPECT_EQ(sans.cheminsEssayesPourNode(), nodes);
}

TEST_F(EssaiEmplacements, UnFichierInstallePendantQueLApplicationTourneEstTrouve) {
  maison.ecrire("ressources/keltrove/serveur.mjs", "");
  EXPECT_EQ(emplacements.commandeDeDemarrage(), std::nullopt);
  maison.ecrireExecutable("opt/bin/node", "");
  EXPECT_TRUE(emplacements.commandeDeDemarrage().has_value());
}

} // namespace
} // namespace keltrove::moteur
