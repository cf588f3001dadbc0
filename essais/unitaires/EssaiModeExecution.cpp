#include "app/ModeExecution.hpp"

#include <gtest/gtest.h>

namespace keltrove::app {
namespace {

TEST(ModeExecution, SansArgumentOuvreLeBureau) {
  EXPECT_EQ(choisirLeMode({"keltrove"}, "/cle"), ModeExecution(ModeBureau{}));
  EXPECT_EQ(choisirLeMode({}, std::nullopt), ModeExecution(ModeBureau{}));
}

TEST(ModeExecution, UneAutreCasseOuDesTiretsOuvrentLeBureau) {
  for (const auto* argument : {"Verifier-inventaire", "--verifier-inventaire", "-verifier-inventaire",
                               "verifier-inventaire ", "VERIFIER-INVENTAIRE", ""})
    EXPECT_EQ(choisirLeMode({"keltrove", argument, "dossier"}, std::nullopt), ModeExecution(ModeBureau{}));
}

TEST(ModeExecution, SansDossierVerifieLeDossierVide) {
  EXPECT_EQ(choisirLeMode({"keltrove", "verifier-inventaire"}, std::nullopt),
            ModeExecution(ModeVerification("", "")));
  EXPECT_EQ(choisirLeMode({"keltrove", "verifier-inventaire"}, "/env/cle"),
            ModeExecution(ModeVerification("", "/env/cle")));
}

TEST(ModeExecution, SansCleNommeePrendCelleDeLEnvironnementMemeVide) {
  EXPECT_EQ(choisirLeMode({"keltrove", "verifier-inventaire", "d"}, "/env/cle"),
            ModeExecution(ModeVerification("d", "/env/cle")));
  EXPECT_EQ(choisirLeMode({"keltrove", "verifier-inventaire", "d"}, ""),
            ModeExecution(ModeVerification("d", "")));
}

TEST(ModeExecution, LaCleNommeeLEmporteSurLEnvironnement) {
  EXPECT_EQ(choisirLeMode({"keltrove", "verifier-inventaire", "d", "c", "reste"}, "/env/cle"),
            ModeExecution(ModeVerification("d", "c")));
  EXPECT_EQ(choisirLeMode({"keltrove", "verifier-inventaire", "d", ""}, "/env/cle"),
            ModeExecution(ModeVerification("d", "")));
}

} // namespace
} // namespace keltrove::app
