// ModeExecution : ce que la ligne de commande demande, et rien d’autre. Rien n’est vérifié : un dossier
// absent se saura en l’ouvrant. Sans état.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace keltrove::app {

// Ouvrir la fenêtre : sans argument, ou devant un argument que l’on ne connaît pas.
struct ModeBureau {
  bool operator==(const ModeBureau&) const = default;
};
// « verifier-inventaire ». Un chemin qui manque est vide.
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
