// SortieDOutil : ce qu’un outil du système imprime.
#pragma once

#include <string>
#include <vector>

namespace keltrove::moteur {

// Lance `mots`, dont le premier est un chemin absolu, et rend sa sortie ; ses plaintes sont tues. Vide s’il
// ne se lance pas. Bloquante jusqu’à sa fin ; utilisable depuis tout fil.
std::string sortieDe(std::vector<std::string> mots);

} // namespace keltrove::moteur
