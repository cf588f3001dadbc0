#include "socle/Identifiant.hpp"

#include <cstdint>
#include <random>

#include <fmt/format.h>

namespace keltrove::socle {

std::string identifiantAuHasard() {
  std::random_device hasard;
  const auto tirer = [&] { return std::uint32_t{hasard()}; };
  const std::uint32_t tete = tirer();
  const std::uint32_t version = (tirer() & 0xFFFF0FFFU) | 0x4000U;
  const std::uint32_t variante = (tirer() & 0x3FFFFFFFU) | 0x80000000U;
  const std::uint32_t queue = tirer();
  return fmt::format("{:08X}-{:04X}-{:04X}-{:04X}-{:04X}{:08X}", tete, version >> 16, version & 0xFFFFU,
                     variante >> 16, variante & 0xFFFFU, queue);
}

} // namespace keltrove::socle
