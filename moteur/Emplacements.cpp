#include "moteur/Emplacements.hpp"

#include "socle/Fichiers.hpp"
#include "socle/Reglages.hpp"

#include <algorithm>
#include <utility>

namespace keltrove::moteur {

using socle::ajouterComposant;

namespace {

std::optional<std::string> premier(const std::vector<std::string>& candidats,
                                   bool (*convient)(const std::string&)) {
  const auto trouve = std::ranges::find_if(candidats, convient);
  if (trouve == candidats.end()) return std::nullopt;
  return *trouve;
}

} // namespace

const std::vector<std::string> Emplacements::nodesDuSysteme = {"/usr/local/bin/node",
                                                               "/opt/homebrew/bin/node", "/usr/bin/node"};

Emplacements::Emplacements(std::optional<std::string> ressources, std::vector<std::string> nodes)
    : ressources_(std::move(ressources)), nodes_(std::move(nodes)) {}

std::optional<std::string> Emplacements::porteDuLotB() const {
  if (!ressources_) return std::nullopt;
  return premier({ajouterComposant(*ressources_, "demarrer-keltrove.sh")}, socle::estExecutable);
}

std::vector<std::string> Emplacements::cheminsEssayesPourNode() const {
  std::vector<std::string> candidats;
  if (ressources_) {
    candidats.push_back(ajouterComposant(*ressources_, "node"));
    candidats.push_back(ajouterComposant(*ressources_, "node/bin/node"));
  }
  candidats.insert(candidats.end(), nodes_.begin(), nodes_.end());
  return candidats;
}

std::vector<std::string> Emplacements::cheminsEssayesPourLeServeur() const {
  std::vector<std::string> candidats;
  if (ressources_) candidats.push_back(ajouterComposant(*ressources_, "keltrove/serveur.mjs"));
  candidats.push_back(ajouterComposant(socle::Reglages::dossierKeltroveInstalle(), "serveur.mjs"));
  return candidats;
}

std::optional<std::string> Emplacements::node() const {
  return premier(cheminsEssayesPourNode(), socle::estExecutable);
}

std::optional<std::string> Emplacements::serveur() const {
  return premier(cheminsEssayesPourLeServeur(), socle::existe);
}

std::optional<CommandeDemarrage> Emplacements::commandeDeDemarrage() const {
  if (const auto porte = porteDuLotB()) return CommandeDemarrage{*porte, {}, socle::dossierDe(*porte)};
  const auto programme = node();
  const auto code = serveur();
  if (!programme || !code) return std::nullopt;
  return CommandeDemarrage{*programme, {*code}, socle::dossierDe(*code)};
}

} // namespace keltrove::moteur
