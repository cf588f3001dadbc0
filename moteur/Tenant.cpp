#include "moteur/Tenant.hpp"

#include <algorithm>

namespace keltrove::moteur {
namespace {

// Les adresses où mène localhost, et celles qui les contiennent toutes, en IPv6 puis en IPv4.
constexpr AdresseIP adressesDeLocalhost[] = {
    {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1},
    {},
    {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff, 127, 0, 0, 1},
    {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff, 0, 0, 0, 0},
};

constexpr uid_t administrateur = 0;

} // namespace

Tenant tenantParmi(std::span<const PriseALEcoute> prises, int port, uid_t nous) {
  bool quelquUn = false;
  for (const auto& prise : prises) {
    if (prise.port != port ||
        std::ranges::find(adressesDeLocalhost, prise.adresse) == std::end(adressesDeLocalhost))
      continue;
    if (prise.compte != nous && prise.compte != administrateur) return Tenant::etranger;
    quelquUn = true;
  }
  return quelquUn ? Tenant::nousOuLAdministrateur : Tenant::etranger;
}

} // namespace keltrove::moteur
