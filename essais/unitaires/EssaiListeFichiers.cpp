#include "DossierSigne.hpp"
#include "Echange.hpp"
#include "Patience.hpp"
#include "verification/ListeFichiers.hpp"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace keltrove::verification {
namespace {

namespace fs = std::filesystem;

std::optional<Refus> refusDe(const essais::DossierSigne& code, const Mesure& mesure) {
  const auto liste = listerFichiers(code.dossier(), mesure);
  return liste ? std::nullopt : std::optional(liste.error());
}

// À chaque niveau, le suivant, et à côté deux dossiers d’un fichier. Dans quelque ordre que le système les
// rende, il faut à un niveau sur deux y remonter pour les voir tous.
void faireUnPeigne(const std::string& racine, int niveaux, const std::string& nom = "f") {
  int ici = ::open(racine.c_str(), O_RDONLY | O_DIRECTORY);
  for (int i = 0; i < niveaux; ++i) {
    if (i % 2 == 0) ::mkdirat(ici, "d", 0700);
    for (const char* dent : {"a", "z"}) {
      ASSERT_EQ(::mkdirat(ici, dent, 0700), 0);
      const auto fichier = std::string(dent) + "/" + nom + std::to_string(i);
      ::close(::openat(ici, fichier.c_str(), O_CREAT | O_WRONLY, 0600));
    }
    if (i % 2 == 1) ::mkdirat(ici, "d", 0700);
    const int suivant = ::openat(ici, "d", O_RDONLY | O_DIRECTORY);
    ::close(ici);
    ici = suivant;
  }
  ::close(ici);
}

// Des milliers de dossiers coûtent cher sur un disque ; en mémoire, presque rien.
class GrandDossier {
public:
  GrandDossier()
      : racine_(fs::exists("/dev/shm") ? "/dev/shm/liste-d-essai.XXXXXX" : "/tmp/liste-d-essai.XXXXXX") {
    if (::mkdtemp(racine_.data()) == nullptr) std::abort();
  }
  GrandDossier(const GrandDossier&) = delete;
  GrandDossier& operator=(const GrandDossier&) = delete;
  ~GrandDossier() { fs::remove_all(racine_); }
  const std::string& dossier() const { return racine_; }

private:
  std::string racine_;
};

class AvecPeuDeDescripteurs {
public:
  explicit AvecPeuDeDescripteurs(rlim_t combien) {
    ::getrlimit(RLIMIT_NOFILE, &avant_);
    const rlimit peu{.rlim_cur = combien, .rlim_max = avant_.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &peu);
  }
  AvecPeuDeDescripteurs(const AvecPeuDeDescripteurs&) = delete;
  AvecPeuDeDescripteurs& operator=(const AvecPeuDeDescripteurs&) = delete;
  ~AvecPeuDeDescripteurs() { ::setrlimit(RLIMIT_NOFILE, &avant_); }

private:
  rlimit avant_{};
};

TEST(EssaiListeFichiers, ChaqueMesureEstPermiseEtAuDelaRien) {
  const essais::DossierSigne code;
  code.ecrire("un/deux/trois", "");
  code.ecrire("4/5", "");
  for (const char* lien : {"un/6", "un/7"})
    fs::create_directory_symlink(code.chemin("4"), code.chemin(lien));
  EXPECT_EQ(refusDe(code, {}), std::nullopt);
  EXPECT_EQ(refusDe(code, {.niveaux = 3}), std::nullopt);
  EXPECT_EQ(refusDe(code, {.niveaux = 2}), Refus::demesure);
  EXPECT_EQ(refusDe(code, {.revus = 2}), std::nullopt);
  EXPECT_EQ(refusDe(code, {.revus = 1}), Refus::demesure);
  // un/ un/deux/ un/deux/trois 4/ 4/5 un/6/ un/6/5 un/7/ un/7/5
  constexpr std::size_t octets = 3 + 8 + 13 + 2 + 3 + 2 * (5 + 6);
  EXPECT_EQ(refusDe(code, {.octets = octets}), std::nullopt);
  EXPECT_EQ(refusDe(code, {.octets = octets - 1}), Refus::demesure);
}

TEST(EssaiListeFichiers, UnDossierAbsentEtUneBoucleSontIllisiblesPlutotQueDemesures) {
  const essais::DossierSigne code;
  EXPECT_EQ(listerFichiers("/nulle/part").error(), Refus::illisible);
  fs::create_directories(code.chemin("x"));
  fs::create_directory_symlink(code.dossier(), code.chemin("x/boucle"));
  EXPECT_EQ(refusDe(code, {}), Refus::illisible);
}

TEST(EssaiListeFichiers, UneErreurDAvantNEnFaitPasUneLecture) {
  const essais::DossierSigne code;
  errno = EIO;
  EXPECT_EQ(refusDe(code, {}), std::nullopt);
}

TEST(EssaiListeFichiers, UnArbreBienPlusProfondQueLesDescripteursSeListeEnEntier) {
  constexpr int niveaux = 3000;
  const GrandDossier code;
  faireUnPeigne(code.dossier(), niveaux);
  const AvecPeuDeDescripteurs peu(64);
  auto liste = listerFichiers(code.dossier()).value();
  ASSERT_EQ(liste.size(), 2U * niveaux);
  std::ranges::sort(liste);
  EXPECT_EQ(std::ranges::adjacent_find(liste), liste.end());
  std::string chemin;
  for (int i = 0; i < niveaux; ++i, chemin += "d/")
    for (const char* dent : {"a", "z"}) {
      const auto voulu = chemin + dent + "/f" + std::to_string(i);
      ASSERT_TRUE(std::ranges::binary_search(liste, voulu)) << i;
    }
}

TEST(EssaiListeFichiers, UnDossierEchangePendantLaMarcheNeMeleRienEtFinitParSeDire) {
  const GrandDossier code;
  const GrandDossier ailleurs;
  faireUnPeigne(code.dossier(), 200, "ici");
  faireUnPeigne(ailleurs.dossier(), 200, "ailleurs");
  std::atomic<bool> fini = false;
  std::thread echanges([&] {
    while (!fini)
      essais::echanger(code.dossier() + "/d", ailleurs.dossier() + "/d");
  });
  const auto limite = std::chrono::steady_clock::now() + essais::patience;
  std::ptrdiff_t venus = 0;
  bool aTemps = true;
  while (aTemps && (venus == 0 || venus == 2 * 199)) {
    const auto liste = listerFichiers(code.dossier());
    if (!liste) break;
    venus = std::ranges::count_if(*liste, [](auto& nom) { return nom.contains("ailleurs"); });
    aTemps = std::chrono::steady_clock::now() < limite;
  }
  fini = true;
  echanges.join();
  EXPECT_TRUE(venus == 0 || venus == 2 * 199) << venus;
  EXPECT_TRUE(aTemps) << "jamais pris sur le fait";
}

TEST(EssaiListeFichiers, PlusDeCentMilleDossiersSeListent) {
  constexpr int combien = 100'100;
  const GrandDossier code;
  for (int i = 0; i < combien; ++i)
    ASSERT_EQ(::mkdir((code.dossier() + "/" + std::to_string(i)).c_str(), 0700), 0);
  ::close(::open((code.dossier() + "/7/f").c_str(), O_CREAT | O_WRONLY, 0600));
  EXPECT_EQ(listerFichiers(code.dossier()).value(), std::vector<std::string>{"7/f"});
}

} // namespace
} // namespace keltrove::verification
