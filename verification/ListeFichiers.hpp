// ListeFichiers : tous les fichiers d’un dossier de code, tels qu’un inventaire doit les nommer.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace keltrove::verification {

// Les noms que l’on n’inventorie ni ne parcourt, où qu’ils soient.
const std::set<std::string, std::less<>>& horsInventaire();

// Les chemins relatifs de tout ce qui n’est pas un dossier, sans ordre. Les liens sont suivis, et leurs
// fichiers portent le nom du lien ; un lien brisé ne compte pas. Rien si un dossier ne peut être lu, si un
// lien ramène à un dossier où il se trouve, ou si l’arbre dépasse toute mesure : quatre mille niveaux, un
// million de dossiers.
std::optional<std::vector<std::string>> listerFichiers(const std::string& dossier);

} // namespace keltrove::verification
