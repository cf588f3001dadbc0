// ModeExecution : ce que la ligne de commande demande, et rien d’autre.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace keltrove::app {

struct ModeBureau {
  bool operator==(const ModeBureau&) const = default;
};
struct ModeVerification {
  std::string dossier;
  std::string cheminCle;
  bool operator==(const ModeVerification&) const = default;
};
using ModeExecution = std::variant<ModeBureau, ModeVerification>;

// `arguments` commence par le chemin du programme. `cleDeLEnvironnement` est la valeur de KELTROVE_MAJ_CLE si
// elle est présente, même vide ; elle ne sert que si la ligne de commande ne nomme pas de clé.
ModeExecution choisirLeMode(const std::vector<std::string>& arguments,
                            const std::optional<std::string>& cleDeLEnvironnement);

} // namespace keltrove::app
