// La table de parité, jouée par le comportement seul. Les deux bureaux jouent la même.

#include "BureauDeParite.hpp"
#include "TableDeParite.hpp"

#include <algorithm>

#include <gtest/gtest.h>

namespace keltrove::essais {
namespace {

class EssaiParite : public testing::TestWithParam<ScenarioDeParite> {
protected:
  static bool estUneSuite(const std::string& voix) {
    return voix == "journal" || voix == "page" || voix == "notification" || voix == "système";
  }

  static bool estUnSurvol(const std::string& vue) {
    return vue.starts_with("survol(") && !vue.contains("null");
  }

  std::vector<std::string> vues(const std::string& voix) const {
    auto suite = bureau.suite(voix);
    if (voix == "journal") std::erase_if(suite, vientQuandEllePeut);
    // Combien de fois la souris a bougé ne compte pas.
    const auto [fin, _] = std::ranges::unique(
        suite, [](const auto& avant, const auto& apres) { return estUnSurvol(avant) && estUnSurvol(apres); });
    suite.erase(fin, suite.end());
    return suite;
  }

  // Vrai quand toutes sont venues ; une autre à la place de l’une n’attend pas pour se dire.
  bool sontVenues(const std::string& voix) {
    const auto suite = vues(voix);
    const auto& lignes = attendus[voix];
    for (std::size_t i = 0; i < std::min(suite.size(), lignes.size()); ++i)
      if (!lignes[i].convient(suite[i], bureau.port())) return true;
    return suite.size() >= lignes.size();
  }

  void attendre(const LigneAttendue& ligne) {
    const auto convient = [&](const std::string& vue) { return ligne.convient(vue, bureau.port()); };
    const auto lieu = testing::ScopedTrace(KELTROVE_PARITE "/scenarios.txt", ligne.numero, ligne.texte);
    if (!estUneSuite(ligne.voix)) {
      bureau.attendre([&] { return convient(bureau.etat(ligne.voix)); });
      ASSERT_TRUE(convient(bureau.etat(ligne.voix))) << "vu : " << bureau.etat(ligne.voix);
    } else if (ligne.quandEllePeut) {
      const auto venue = [&] { return std::ranges::any_of(bureau.suite(ligne.voix), convient); };
      ASSERT_TRUE(bureau.attendre(venue));
    } else {
      attendus[ligne.voix].push_back(ligne);
      bureau.attendre([&] { return sontVenues(ligne.voix); });
      exigerLaSuite(ligne.voix, attendus[ligne.voix].size());
    }
  }

  // Les `combien` premières.
  void exigerLaSuite(const std::string& voix, std::size_t combien) {
    const auto suite = vues(voix);
    const auto& lignes = attendus[voix];
    ASSERT_GE(suite.size(), lignes.size()) << "vu : " << testing::PrintToString(suite);
    for (std::size_t i = 0; i < combien; ++i) {
      if (i >= lignes.size()) FAIL() << "de plus : " << suite[i];
      ASSERT_TRUE(lignes[i].convient(suite[i], bureau.port()))
          << "ligne " << lignes[i].numero << ", vu : " << testing::PrintToString(suite);
    }
  }

  std::map<std::string, std::vector<LigneAttendue>> attendus;
  BureauDeParite bureau{GetParam()};
};

TEST_P(EssaiParite, LeJournalEstCeluiDeLaTable) {
  for (const auto& geste : GetParam().gestes) {
    bureau.faire(geste.nom, geste.objet);
    for (const auto& ligne : geste.attendus) {
      if (ligne.estPour("sans-ecran")) attendre(ligne);
      if (HasFatalFailure()) return;
    }
  }
  for (const auto* voix : {"journal", "page", "notification", "système"})
    exigerLaSuite(voix, vues(voix).size());
}

INSTANTIATE_TEST_SUITE_P(DeLaTable, EssaiParite, testing::ValuesIn(scenariosDeParite()),
                         [](const auto& parametre) { return parametre.param.nom; });

} // namespace
} // namespace keltrove::essais
