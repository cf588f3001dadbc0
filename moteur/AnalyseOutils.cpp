#include "moteur/AnalyseOutils.hpp"

#include "socle/LireNombre.hpp"
#include "socle/Texte.hpp"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <unordered_set>

namespace keltrove::moteur {
namespace {

using socle::decouper;
using socle::MorceauxVides;

// Un signe facultatif puis des chiffres, et rien d’autre.
std::optional<std::int32_t> lireEntier(std::string_view texte) {
  if (texte.starts_with('+')) {
    texte.remove_prefix(1);
    if (texte.starts_with('-')) return std::nullopt;
  }
  return socle::lireNombre<std::int32_t>(texte);
}

std::optional<int> portDeLaLigne(std::string_view ligne) {
  const auto champs = decouper(ligne, ' ', MorceauxVides::ecartes);
  const auto adresse = std::find_if(champs.rbegin(), champs.rend(),
                                    [](const std::string& champ) { return champ.contains(':'); });
  if (adresse == champs.rend()) return std::nullopt;
  const auto morceaux = decouper(*adresse, ':', MorceauxVides::ecartes);
  if (morceaux.empty()) return std::nullopt;
  const auto port = lireEntier(morceaux.back());
  return port && *port > 0 ? port : std::nullopt;
}

} // namespace

std::vector<pid_t> lirePgrep(std::string_view sortie) {
  std::vector<pid_t> enfants;
  if (!socle::estUTF8(sortie)) return enfants;
  for (const auto& ligne : decouper(sortie, '\n', MorceauxVides::ecartes))
    if (const auto pid = lireEntier(socle::rognerEspaces(ligne))) enfants.push_back(*pid);
  return enfants;
}

std::vector<int> lireLsof(std::string_view sortie) {
  std::vector<int> ports;
  std::unordered_set<int> vus;
  if (!socle::estUTF8(sortie)) return ports;
  const auto lignes = decouper(sortie, '\n', MorceauxVides::ecartes);
  for (std::size_t i = 1; i < lignes.size(); ++i) {
    const auto port = portDeLaLigne(lignes[i]);
    if (port && vus.insert(*port).second) ports.push_back(*port);
  }
  return ports;
}

} // namespace keltrove::moteur
