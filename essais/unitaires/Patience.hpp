// Patience : combien de temps réel attendre ce qui doit arriver. Un essai réussi ne l’attend jamais ; un
// essai raté finit.
#pragma once

#include <chrono>

namespace keltrove::essais {

// Moins que la limite que ctest met à chaque essai ; bien plus que ce que prend une machine chargée.
inline constexpr std::chrono::seconds patience{100};

} // namespace keltrove::essais
