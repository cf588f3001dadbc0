#include "MaisonTemporaire.hpp"
#include "SortieDErreurNotee.hpp"
#include "moteur/SortieDOutil.hpp"
#include "socle/Descripteur.hpp"
#include "socle/LancementProcessus.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

namespace keltrove::moteur {
namespace {

class EssaiSortieDOutil : public testing::Test {
protected:
  std::string outil(const std::string& script) const {
    maison.ecrireExecutable("outil", "#!/bin/sh\n" + script);
    return maison.chemin("outil");
  }
  essais::MaisonTemporaire maison;
};

TEST_F(EssaiSortieDOutil, SaSortieSeLitEntiereEtSesPlaintesSontTues) {
  const essais::SortieDErreurNotee console;
  const auto sortie = sortieDe({outil("echo plainte >&2; head -c 100000 /dev/zero | tr '\\0' x; exit 3")});
  EXPECT_EQ(sortie, std::string(100000, 'x'));
  EXPECT_TRUE(console.lignes().empty());
}

TEST_F(EssaiSortieDOutil, CeQuiNeSeLancePasNeDitRien) {
  EXPECT_EQ(sortieDe({maison.chemin("absent")}), "");
}

TEST_F(EssaiSortieDOutil, IlRecoitSesArgumentsMaisAucunDeNosDescripteurs) {
  socle::Tube tube;
  ASSERT_TRUE(socle::ouvrirTube(tube));
  const socle::Descripteur lecture(tube.lecture);
  const socle::Descripteur ecriture(tube.ecriture);
  const socle::Descripteur legue(::dup2(ecriture.numero(), 9));
  ASSERT_EQ(legue.numero(), 9);
  EXPECT_EQ(sortieDe({outil("echo \"$*\"; { : >&9; } 2>/dev/null && echo légué"), "-a", "deux mots"}),
            "-a deux mots\n");
}

} // namespace
} // namespace keltrove::moteur
