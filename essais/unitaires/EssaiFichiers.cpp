#include "MaisonTemporaire.hpp"
#include "socle/Environnement.hpp"
#include "socle/Executable.hpp"
#include "socle/Fichiers.hpp"

#include <csignal>
#include <cstdlib>
#include <filesystem>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace keltrove::socle {
namespace {

using essais::MaisonTemporaire;

TEST(Fichiers, JoindreDonneExactementUneBarre) {
  EXPECT_EQ(ajouterComposant("/a", "b"), "/a/b");
  EXPECT_EQ(ajouterComposant("/a/", "b/c"), "/a/b/c");
  EXPECT_EQ(ajouterComposant("/a//", "/b"), "/a/b");
  EXPECT_EQ(ajouterComposant("/", "b"), "/b");
  EXPECT_EQ(ajouterComposant("", "b"), "b");
}

TEST(Fichiers, LeDossierDUnCheminEstCeCheminSansSonDernierComposant) {
  EXPECT_EQ(dossierDe("/a/b/c"), "/a/b");
  EXPECT_EQ(dossierDe("/a"), "/");
  EXPECT_EQ(dossierDe("/a/b/"), "/a");
  EXPECT_EQ(dossierDe("a"), "");
}

TEST(Fichiers, UnExecutableNEstNiUnDossierNiUnFichierSansDroit) {
  const MaisonTemporaire maison;
  maison.ecrireExecutable("oui", "");
  maison.ecrire("non", "");
  std::filesystem::create_directory(maison.chemin("dossier"));
  std::filesystem::create_symlink("oui", maison.chemin("lien"));
  std::filesystem::create_symlink("rien", maison.chemin("perdu"));
  EXPECT_TRUE(estExecutable(maison.chemin("oui")));
  EXPECT_TRUE(estExecutable(maison.chemin("lien")));
  for (const auto* nom : {"non", "dossier", "perdu", "absent"})
    EXPECT_FALSE(estExecutable(maison.chemin(nom)));
}

TEST(Fichiers, LireSArreteExactementAuMaximum) {
  const MaisonTemporaire maison;
  maison.ecrire("f", std::string("a\0bcd", 5));
  EXPECT_EQ(lireFichier(maison.chemin("f"), 5), std::string("a\0bcd", 5));
  EXPECT_EQ(lireFichier(maison.chemin("f"), 4), std::nullopt);
  EXPECT_EQ(lireFichier(maison.chemin("absent"), 4), std::nullopt);
}

TEST(Fichiers, EcrireRemplaceDUnCoupPourLeSeulProprietaire) {
  const MaisonTemporaire maison;
  const auto chemin = maison.chemin("un/deux/f");
  EXPECT_TRUE(ecrireFichier(chemin, "ancien"));
  EXPECT_TRUE(ecrireFichier(chemin, "neuf"));
  EXPECT_EQ(maison.lire("un/deux/f"), "neuf");
  struct stat etat{};
  ASSERT_EQ(::stat(chemin.c_str(), &etat), 0);
  EXPECT_EQ(etat.st_mode & 0777, 0600U);
}

TEST(Fichiers, UneEcritureImpossibleNeLaisseRien) {
  const MaisonTemporaire maison;
  maison.ecrire("fichier", "x");
  EXPECT_FALSE(ecrireFichier(maison.chemin("fichier/dedans"), "y"));
  std::filesystem::create_directories(maison.chemin("place/prise"));
  EXPECT_FALSE(ecrireFichier(maison.chemin("place"), "y"));
  EXPECT_EQ(maison.lire("fichier"), "x");
  for (const auto& entree : std::filesystem::directory_iterator(maison.racine()))
    EXPECT_EQ(entree.path().filename().string().find("place."), std::string::npos);
}

TEST(Fichiers, UneEcritureCoupeeNeRemplacePasLAncien) {
  const MaisonTemporaire maison;
  maison.ecrire("f", "ancien");
  rlimit avant{};
  ::getrlimit(RLIMIT_FSIZE, &avant);
  const auto signalAvant = ::signal(SIGXFSZ, SIG_IGN);
  const rlimit peu{.rlim_cur = 4, .rlim_max = avant.rlim_max};
  ::setrlimit(RLIMIT_FSIZE, &peu);
  const bool ecrit = ecrireFichier(maison.chemin("f"), "bien plus long");
  ::setrlimit(RLIMIT_FSIZE, &avant);
  ::signal(SIGXFSZ, signalAvant);
  EXPECT_FALSE(ecrit);
  EXPECT_EQ(maison.lire("f"), "ancien");
  for (const auto& entree : std::filesystem::directory_iterator(maison.racine()))
    EXPECT_FALSE(entree.path().filename().string().starts_with("f.")) << "un reste : " << entree.path();
}

TEST(Executable, LesRessourcesSontACoteDeLExecutableSinonDansShareSinonDansLePaquet) {
  const MaisonTemporaire maison;
  const auto executable = maison.chemin("bin/keltrove");
  std::filesystem::create_directories(maison.chemin("bin"));
  EXPECT_EQ(dossierDesRessources(executable), std::nullopt);
  std::filesystem::create_directories(maison.chemin("Resources"));
  EXPECT_EQ(dossierDesRessources(executable), maison.chemin("Resources"));
  std::filesystem::create_directories(maison.chemin("share/keltrove"));
  EXPECT_EQ(dossierDesRessources(executable), maison.chemin("share/keltrove"));
  maison.ecrire("bin/ressources", "un fichier ne compte pas");
  EXPECT_EQ(dossierDesRessources(executable), maison.chemin("share/keltrove"));
  maison.effacer("bin/ressources");
  std::filesystem::create_directories(maison.chemin("bin/ressources"));
  EXPECT_EQ(dossierDesRessources(executable), maison.chemin("bin/ressources"));
}

TEST(Executable, LeProgrammeEnCoursSeConnait) {
  EXPECT_TRUE(cheminDeLExecutable()->ends_with("essais_unitaires"));
}

TEST(Environnement, LaPremiereValeurDUnNomCompteEtLesEntreesSansEgalSontEcartees) {
  const char* const variables[] = {"A=1", "A=2", "bizarre", "=x", "AB=3", "VIDE=", nullptr};
  const Environnement environnement(variables);
  EXPECT_EQ(environnement.lire("A"), "1");
  EXPECT_EQ(environnement.lire("AB"), "3");
  EXPECT_EQ(environnement.lire("VIDE"), "");
  EXPECT_EQ(environnement.lire("B"), std::nullopt);
  EXPECT_EQ(environnement.entrees(), (std::vector<std::string>{"A=1", "AB=3", "VIDE="}));
}

TEST(Environnement, DefinirRemplaceOuAjouteSansToucherALOriginal) {
  Environnement un;
  un.definir("A", "1");
  auto copie = un;
  copie.definir("A", "2=3");
  copie.definir("B", "");
  EXPECT_EQ(un.lire("A"), "1");
  EXPECT_EQ(copie.lire("A"), "2=3");
  EXPECT_EQ(copie.lire("B"), "");
  EXPECT_EQ(un.lire("B"), std::nullopt);
}

} // namespace
} // namespace keltrove::socle
