#include "MaisonTemporaire.hpp"
#include "socle/Fichiers.hpp"

#include <atomic>
#include <filesystem>
#include <string>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <gtest/gtest.h>

namespace keltrove::socle {
namespace {

using essais::MaisonTemporaire;

// Les descripteurs de ce fichier, ou de son voisin provisoire, qu’un programme lancé recevrait ou non.
std::pair<bool, bool> vusOuvertsEtHeritables(const std::string& chemin) {
  std::pair<bool, bool> vus;
  std::error_code parti;
  for (const auto& entree : std::filesystem::directory_iterator("/proc/self/fd", parti)) {
    if (!std::filesystem::read_symlink(entree, parti).string().starts_with(chemin)) continue;
    const int drapeaux = ::fcntl(std::stoi(entree.path().filename()), F_GETFD);
    if (drapeaux < 0) continue; // refermé entre-temps
    vus.first = true;
    vus.second = vus.second || (drapeaux & FD_CLOEXEC) == 0;
  }
  return vus;
}

TEST(Fichiers, UnProgrammeLancePendantUneEcritureNEnHeritePas) {
  const MaisonTemporaire maison;
  const std::string contenu(32UL << 20, 'x');
  std::atomic<bool> vu = false;
  std::jthread ecriture([&] {
    while (!vu)
      ecrireFichier(maison.chemin("f"), contenu);
  });
  while (!vu) {
    const auto [ouvert, heritable] = vusOuvertsEtHeritables(maison.chemin("f"));
    EXPECT_FALSE(heritable);
    vu = ouvert;
  }
}

} // namespace
} // namespace keltrove::socle
