// TableDeParite : les scénarios de essais/parite/scenarios.txt, qui dit en tête ce que ses mots veulent dire.
#pragma once

#include <map>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace keltrove::essais {

struct LigneAttendue {
  int numero = 0;
  std::string voix; // « journal » pour la sortie d’erreur
  std::string texte;
  bool quandEllePeut = false;
  std::string joueurs; // vide : tous

  bool convient(const std::string& vue, int port) const;
  bool estPour(std::string_view joueur) const { return joueurs.empty() || joueurs.contains(joueur); }
};

struct GesteDeParite {
  std::string nom;
  std::string objet;
  std::vector<LigneAttendue> attendus;
};

struct ScenarioDeParite {
  std::string nom;
  std::map<std::string, std::string> depart;
  std::vector<GesteDeParite> gestes;

  std::string auDepart(const std::string& cle, const std::string& dOffice = "") const;
};

// Son nom, pour ce qu’un essai raté en dit.
void PrintTo(const ScenarioDeParite& scenario, std::ostream* sortie);

// La table entière, lue une fois.
const std::vector<ScenarioDeParite>& scenariosDeParite();
// Une étape qui vient quand elle peut, où que ce soit dans la table.
bool vientQuandEllePeut(std::string_view ligneDuJournal);

} // namespace keltrove::essais
