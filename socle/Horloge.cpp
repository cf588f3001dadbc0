#include "socle/Horloge.hpp"

#include <chrono>
#include <thread>

namespace keltrove::socle {

double HorlogeSysteme::maintenant() const {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void HorlogeSysteme::dormir(double secondes) {
  std::this_thread::sleep_for(std::chrono::duration<double>(secondes));
}

} // namespace keltrove::socle
