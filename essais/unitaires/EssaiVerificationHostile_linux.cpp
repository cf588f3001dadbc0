#include "DossierSigne.hpp"
#include "socle/Descripteur.hpp"
#include "verification/Empreintes.hpp"
#include "verification/Memoire.hpp"

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <limits>
#include <optional>
#include <span>
#include <sstream>
#include <string>

#include <fcntl.h>
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

TEST(EssaiMemoire, CeQueLeSystemeNeProjettePasSeLit) {
  constexpr const char* chemin = "/proc/version";
  std::ostringstream attendu;
  attendu << std::ifstream(chemin).rdbuf();
  const auto taille = attendu.str().size();
  const auto lire = [&](std::size_t combien) {
    const socle::Descripteur fichier(::open(chemin, O_RDONLY | O_CLOEXEC));
    std::optional<std::string> lu;
    Memoire(fichier.numero(), combien).confier([&](std::span<const char> octets) {
      lu.emplace(octets.begin(), octets.end());
      return true;
    });
    return lu;
  };
  EXPECT_EQ(lire(taille), attendu.str());
  EXPECT_EQ(lire(taille + 1), std::nullopt) << "il en manque";
  EXPECT_EQ(lire(std::numeric_limits<std::ptrdiff_t>::max()), std::nullopt) << "plus que la machine n’a";
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
