#include "LangueAVirgule.hpp"
#include "MaisonTemporaire.hpp"
#include "socle/Journal.hpp"
#include "socle/Reglages.hpp"

#include <cstdlib>
#include <filesystem>
#include <limits>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace keltrove::socle::Journal {
namespace {

constexpr const char* fichier = ".zelcor/keltrove-app-etat.json";

class EssaiJournal : public testing::Test {
protected:
  EssaiJournal() { ::unsetenv("KELTROVE_ESSAI"); }
  static std::string imprime(const std::function<void()>& action) {
    testing::internal::CaptureStderr();
    action();
    return testing::internal::GetCapturedStderr();
  }
  essais::MaisonTemporaire maison;
};

TEST_F(EssaiJournal, LaPremiereEtapeEstASecondeZero) {
  etape("une");
  EXPECT_EQ(std::get<double>(etapes().front().at("seconde")), 0.0);
}

TEST_F(EssaiJournal, ChaqueEtapeSImprimeSurUneLigneAvecSesDetailsTries) {
  EXPECT_EQ(imprime([] { etape("demarrage-demande"); }), "  [keltrove] demarrage-demande \n");
  EXPECT_EQ(imprime([] { etape("allume", {{"port", std::int64_t{7777}}, {"cause", "x"}}); }),
            "  [keltrove] allume cause=x port=7777\n");
}

// Met à la place de la sortie d’erreur, le temps d’un essai, un tube que personne ne lit.
class TubePlein {
public:
  TubePlein() {
    EXPECT_EQ(::pipe(bouts_), 0);
    ::fcntl(bouts_[1], F_SETFL, O_NONBLOCK);
    const std::string bloc(4096, 'x');
    while (::write(bouts_[1], bloc.data(), bloc.size()) > 0) {
    }
    ::fcntl(bouts_[1], F_SETFL, 0);
    ::dup2(bouts_[1], STDERR_FILENO);
  }
  TubePlein(const TubePlein&) = delete;
  TubePlein& operator=(const TubePlein&) = delete;
  ~TubePlein() {
    ::dup2(ancienne_, STDERR_FILENO);
    for (const int bout : {ancienne_, bouts_[0], bouts_[1]})
      ::close(bout);
  }

private:
  int ancienne_ = ::dup(STDERR_FILENO);
  int bouts_[2] = {-1, -1};
};

TEST_F(EssaiJournal, UneSortieQuePersonneNeLitNeRetientPasLEtape) {
  ::setenv("KELTROVE_ESSAI", "1", 1);
  {
    const TubePlein plein;
    etape("pendant", {{"long", std::string(100'000, 'y')}});
  }
  EXPECT_EQ(etapes().size(), 1U);
  EXPECT_NE(maison.lire(fichier).find("pendant"), std::string::npos) << "le fichier, lui, est écrit";
}

TEST_F(EssaiJournal, UneLigneLonguePasseEnEntier) {
  const std::string valeur(30'000, 'z');
  EXPECT_EQ(imprime([&] { etape("longue", {{"v", valeur}}); }), "  [keltrove] longue v=" + valeur + "\n");
}

TEST_F(EssaiJournal, LesValeursSeDecriventSelonLeurType) {
  EXPECT_EQ(resume({}), "");
  EXPECT_EQ(
      resume({{"a", 0.25}, {"b", 3.0}, {"c", true}, {"d", false}, {"e", std::int64_t{-7}}, {"f", "a b"}}),
      "a=0.25 b=3.0 c=true d=false e=-7 f=a b");
  EXPECT_EQ(resume({{"a", 0.1}, {"b", 1e16}, {"c", -0.0}, {"d", 1.0 / 3}}),
            "a=0.1 b=1e+16 c=-0.0 d=0.3333333333333333");
}

TEST_F(EssaiJournal, LeTriPorteSurLaPaireEntiere) {
  EXPECT_EQ(resume({{"a", "z"}, {"a!", "y"}}), "a!=y a=z");
}

TEST_F(EssaiJournal, UnDetailNommeEtapeCedeALaCleMaisSImprime) {
  const auto ligne = imprime([] { etape("vraie", {{"etape", "fausse"}}); });
  EXPECT_EQ(ligne, "  [keltrove] vraie etape=fausse\n");
  EXPECT_EQ(etapes().back().at("etape"), Valeur("vraie"));
}

TEST_F(EssaiJournal, LeTempsSArronditAuCentiemeEnSEloignantDeZero) {
  EXPECT_EQ(auCentieme(0.125), 0.13);
  EXPECT_EQ(auCentieme(-0.125), -0.13);
  EXPECT_EQ(auCentieme(1.274), 1.27);
}

TEST_F(EssaiJournal, HorsDuModeEssaiAucunFichierNiDossierNEstCree) {
  maison.effacer(".zelcor");
  etape("une");
  EXPECT_FALSE(std::filesystem::exists(maison.chemin(".zelcor")));
}

TEST_F(EssaiJournal, EnModeEssaiLeFichierContientToutesLesEtapes) {
  maison.effacer(".zelcor");
  etape("avant");
  ::setenv("KELTROVE_ESSAI", "1", 1);
  etape("allume", {{"port", std::int64_t{7777}}});
  const auto contenu = nlohmann::json::parse(maison.lire(fichier));
  ASSERT_EQ(contenu.size(), 1U);
  ASSERT_EQ(contenu["etapes"].size(), 2U);
  EXPECT_EQ(contenu["etapes"][0]["etape"], "avant");
  EXPECT_EQ(contenu["etapes"][1]["port"], 7777);
  EXPECT_TRUE(contenu["etapes"][1]["seconde"].is_number_float());
  EXPECT_GT(std::ranges::count(maison.lire(fichier), '\n'), 8) << "un membre par ligne";
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(maison.chemin(".zelcor")), {}), 1)
      << "aucun fichier voisin ne traîne";
}

TEST_F(EssaiJournal, UneValeurSansFormeEnJSONLaisseLeFichierCommeIlEtait) {
  ::setenv("KELTROVE_ESSAI", "1", 1);
  etape("bonne");
  const auto avant = maison.lire(fichier);
  EXPECT_FALSE(imprime([] { etape("nan", {{"x", std::numeric_limits<double>::quiet_NaN()}}); }).empty());
  EXPECT_EQ(maison.lire(fichier), avant);
  EXPECT_EQ(enJSON({{{"x", std::numeric_limits<double>::infinity()}}}), std::nullopt);
  EXPECT_EQ(enJSON({{{"x", "\xff"}}}), std::nullopt);
  EXPECT_EQ(etapes().size(), 2U);
}

TEST_F(EssaiJournal, UnDossierCacheImpossibleACreerNEmpecheQueLeFichier) {
  maison.effacer(".zelcor");
  maison.ecrire(".zelcor", "un fichier à la place");
  ::setenv("KELTROVE_ESSAI", "1", 1);
  EXPECT_EQ(imprime([] { etape("une"); }), "  [keltrove] une \n");
  EXPECT_EQ(maison.lire(".zelcor"), "un fichier à la place");
}

TEST_F(EssaiJournal, LesNombresNePortentJamaisDeVirgule) {
  const essais::LangueAVirgule francais;
  ASSERT_TRUE(essais::LangueAVirgule::active());
  EXPECT_EQ(resume({{"x", 2.5}}), "x=2.5");
  EXPECT_NE(enJSON({{{"x", 2.5}}})->find("2.5"), std::string::npos);
}

TEST_F(EssaiJournal, EnFrancaisLHeureDeFermetureSeLitToujoursAvecUnPoint) {
  const essais::LangueAVirgule francais;
  ASSERT_TRUE(essais::LangueAVirgule::active());
  ::setenv("KELTROVE_ESSAI", "1", 1);
  ::setenv("KELTROVE_ESSAI_QUITTER", "2.5", 1);
  EXPECT_EQ(Reglages::secondesAvantAuToQuitter(), 2.5);
  ::setenv("KELTROVE_ESSAI_QUITTER", "2,5", 1);
  EXPECT_EQ(Reglages::secondesAvantAuToQuitter(), 0);
}

TEST_F(EssaiJournal, HuitFilsNePerdentAucuneEtape) {
  ::setenv("KELTROVE_ESSAI", "1", 1);
  testing::internal::CaptureStderr();
  std::vector<std::thread> fils;
  for (int fil = 0; fil < 8; ++fil)
    fils.emplace_back([] {
      for (int i = 0; i < 25; ++i)
        etape("une", {{"i", std::int64_t{i}}});
    });
  for (auto& fil : fils)
    fil.join();
  const auto lignes = testing::internal::GetCapturedStderr();
  EXPECT_EQ(std::ranges::count(lignes, '\n'), 200);
  EXPECT_EQ(etapes().size(), 200U);
  EXPECT_TRUE(nlohmann::json::accept(maison.lire(fichier)));
}

} // namespace
} // namespace keltrove::socle::Journal
