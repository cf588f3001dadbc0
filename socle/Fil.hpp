// Fil : ce que la bibliothèque standard ne dit pas d’un fil d’exécution.
#pragma once

#include <string_view>

namespace keltrove::socle {

// Nomme le fil appelant pour les outils de mise au point ; refusé, le nom manque et rien d’autre. Linux, qui
// n’admet que 15 octets, n’en montre que le dernier mot, après le point ; macOS en admet 63.
void nommerLeFil(std::string_view nom);

} // namespace keltrove::socle
