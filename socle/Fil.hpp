// Fil : ce que la bibliothèque standard ne dit pas d’un fil d’exécution.
#pragma once

#include <string_view>

namespace keltrove::socle {

// Nomme le fil appelant pour les outils de mise au point ; refusé, le nom manque et rien d’autre. Un système
// qui limite la longueur (15 octets sous Linux) garde la fin du nom, qui distingue les files entre elles.
void nommerLeFil(std::string_view nom);

} // namespace keltrove::socle
