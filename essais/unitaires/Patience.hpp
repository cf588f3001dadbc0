// Patience : combien de temps réel attendre ce qui doit arriver. Un essai réussi ne l’attend jamais ; un
// essai raté finit.
#pragma once

#include <chrono>
#include <thread>

namespace keltrove::essais {

// Moins que la limite que ctest met à chaque essai ; bien plus que ce que prend une machine chargée.
inline constexpr std::chrono::seconds patience{100};

// Pour ce qui n’a pas d’événement à écouter. Vrai si la condition l’est devenue à temps.
bool attendre(const auto& condition) {
  const auto limite = std::chrono::steady_clock::now() + patience;
  while (!condition() && std::chrono::steady_clock::now() < limite)
    std::this_thread::yield();
  return condition();
}

} // namespace keltrove::essais
