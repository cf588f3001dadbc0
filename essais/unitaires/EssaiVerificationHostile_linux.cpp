#include "DossierSigne.hpp"
#include "verification/Empreintes.hpp"

#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

namespace keltrove::verification {
namespace {

TEST(EssaiHostileLinux, UnFichierQuiSeDitVideEtNeLEstPasEstIllisible) {
  essais::DossierSigne code;
  code.lister("a", "contenu");
  code.pretendre("a", essais::empreinteDe(""));
  code.signer();
  std::filesystem::remove(code.chemin("a"));
  std::filesystem::create_symlink("/proc/self/status", code.chemin("a"));
  EXPECT_EQ(code.verifier().message, "fichier illisible : a");
}

TEST(EssaiMemoire, UnFichierLuNeTientPlusDePlace) {
  const essais::DossierSigne code;
  code.ecrire("f", std::string(8 * 1024 * 1024, 'x'));
  const auto place = [] {
    std::ifstream mesures("/proc/self/statm");
    std::size_t pages = 0;
    mesures >> pages;
    return pages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  };
  Empreintes(code.dossier()).calculer("f");
  const auto avant = place();
  for (int i = 0; i < 20; ++i)
    Empreintes(code.dossier()).calculer("f");
  EXPECT_LT(place(), avant + 80UL * 1024 * 1024);
}

} // namespace
} // namespace keltrove::verification
