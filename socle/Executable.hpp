// Executable : où se trouve l’application, et donc ce qui l’accompagne.
#pragma once

#include <optional>
#include <string>

namespace keltrove::socle {

// Le chemin du programme en cours, liens résolus ; rien si le système ne le dit pas.
std::optional<std::string> cheminDeLExecutable();

// Le dossier des ressources : « ressources » à côté de l’exécutable, sinon « ../share/keltrove » depuis son
// dossier, sinon inconnu.
std::optional<std::string> dossierDesRessources(const std::string& executable);

} // namespace keltrove::socle
