#include "TableDeParite.hpp"

#include <algorithm>
#include <fstream>
#include <regex>
#include <utility>

namespace keltrove::essais {
namespace {

constexpr std::string_view duJournal = "[keltrove] ";

bool oter(std::string& texte, std::string_view debut) {
  if (!texte.starts_with(debut)) return false;
  texte.erase(0, debut.size());
  return true;
}

std::pair<std::string, std::string> couper(const std::string& texte) {
  const auto ou = texte.find(" : ");
  if (ou == std::string::npos) return {texte, ""};
  return {texte.substr(0, ou), texte.substr(ou + 3)};
}

LigneAttendue lireLAttendu(int numero, std::string texte) {
  LigneAttendue ligne;
  ligne.numero = numero;
  if (const auto marque = texte.find(" @"); marque != std::string::npos) {
    ligne.joueurs = texte.substr(marque);
    texte.erase(marque);
  }
  ligne.quandEllePeut = oter(texte, "~ ");
  if (texte.starts_with(duJournal))
    std::tie(ligne.voix, ligne.texte) = std::pair("journal", texte);
  else
    std::tie(ligne.voix, ligne.texte) = couper(texte);
  return ligne;
}

void lireUneLigne(std::vector<ScenarioDeParite>& scenarios, int numero, std::string ligne) {
  if (ligne.empty() || ligne.starts_with('#')) return;
  if (oter(ligne, "== ")) {
    scenarios.emplace_back().nom = ligne;
  } else if (oter(ligne, "> ")) {
    auto [nom, objet] = couper(ligne);
    scenarios.back().gestes.push_back({.nom = std::move(nom), .objet = std::move(objet), .attendus = {}});
  } else if (oter(ligne, "  ")) {
    scenarios.back().gestes.back().attendus.push_back(lireLAttendu(numero, std::move(ligne)));
  } else {
    scenarios.back().depart.insert(couper(ligne));
  }
}

std::string enMotif(const std::string& texte, int port) {
  static const std::regex special(R"([.^$|()\[\]{}*+?\\])");
  auto motif = std::regex_replace(texte, std::regex("<port>"), std::to_string(port));
  motif = std::regex_replace(motif, special, R"(\$&)");
  motif = std::regex_replace(motif, std::regex("<nombre>"), R"(\d+(\.\d+)?)");
  return std::regex_replace(motif, std::regex("<texte>"), ".*");
}

} // namespace

bool LigneAttendue::convient(const std::string& vue, int port) const {
  return std::regex_match(vue, std::regex(enMotif(texte, port)));
}

std::string ScenarioDeParite::auDepart(const std::string& cle, const std::string& dOffice) const {
  const auto trouvee = depart.find(cle);
  return trouvee == depart.end() ? dOffice : trouvee->second;
}

void PrintTo(const ScenarioDeParite& scenario, std::ostream* sortie) {
  *sortie << scenario.nom;
}

const std::vector<ScenarioDeParite>& scenariosDeParite() {
  static const auto tous = [] {
    std::vector<ScenarioDeParite> scenarios;
    std::ifstream table(KELTROVE_PARITE "/scenarios.txt");
    int numero = 0;
    for (std::string ligne; std::getline(table, ligne);)
      lireUneLigne(scenarios, ++numero, ligne);
    return scenarios;
  }();
  return tous;
}

bool vientQuandEllePeut(std::string_view ligneDuJournal) {
  const auto estDElles = [&](const LigneAttendue& une) {
    return une.quandEllePeut &&
           ligneDuJournal.starts_with(une.texte.substr(0, une.texte.find(' ', duJournal.size())));
  };
  return std::ranges::any_of(scenariosDeParite(), [&](const auto& scenario) {
    return std::ranges::any_of(
        scenario.gestes, [&](const auto& geste) { return std::ranges::any_of(geste.attendus, estDElles); });
  });
}

} // namespace keltrove::essais
