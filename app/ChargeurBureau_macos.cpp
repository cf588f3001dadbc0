#include "app/ChargeurBureau.hpp"

namespace keltrove::app {

// AppKit ne coûte rien tant que l’on ne s’en sert pas, et il est sur chaque Mac : le bureau est lié au
// programme.
std::expected<LancerLeBureau, std::string> chargerLeBureau(const std::string&) {
  return &keltroveLancerLeBureau;
}

} // namespace keltrove::app
