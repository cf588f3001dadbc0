// Executable : où se trouve l’application, et donc ce qui l’accompagne.
//
// Utilisable depuis tout fil.
#pragma once

#include <optional>
#include <string>

namespace keltrove::socle {

// Le chemin du programme en cours, liens résolus ; rien si le système ne le dit pas.
std::optional<std::string> cheminDeLExecutable();

// Le dossier des ressources : « ressources » à côté de l’exécutable (arbre de construction, copie à part),
// sinon « ../share/keltrove » depuis son dossier (copie installée), sinon « ../Resources » (paquet de macOS),
// sinon inconnu. Un dossier que l’on n’a pas le droit de voir compte pour absent.
std::optional<std::string> dossierDesRessources(const std::string& executable);

} // namespace keltrove::socle
