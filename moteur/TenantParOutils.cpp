#include "moteur/TenantParOutils.hpp"

#include "moteur/AnalyseOutils.hpp"
#include "moteur/SortieDOutil.hpp"

#include <algorithm>
#include <vector>

namespace keltrove::moteur {
namespace {

constexpr uid_t unAutre = static_cast<uid_t>(-1); // aucun compte ne le porte

// Chaque prise de `toutes` que `nous` n’explique pas est d’un autre ; deux comptes peuvent tenir la même
// adresse.
void attribuer(std::vector<PriseALEcoute>& toutes, std::vector<PriseALEcoute> nous) {
  for (auto& prise : toutes) {
    const auto notre = std::ranges::find_if(nous, [&](const PriseALEcoute& une) {
      return une.adresse == prise.adresse && une.port == prise.port;
    });
    prise.compte = notre == nous.end() ? unAutre : notre->compte;
    if (notre != nous.end()) nous.erase(notre);
  }
}

} // namespace

Tenant tenantSelonOutils(const std::string& netstat, const std::string& lsof, int port, uid_t nous) {
  auto prises = lireNetstat(sortieDe({netstat, "-an", "-p", "tcp"}));
  if (!prises) return Tenant::inconnu;
  const auto cherche = "-iTCP:" + std::to_string(port);
  attribuer(*prises,
            lirePrisesDeLsof(
                sortieDe({lsof, "-nP", "-a", "-u", std::to_string(nous), cherche, "-sTCP:LISTEN"}), nous));
  return tenantParmi(*prises, port, nous);
}

} // namespace keltrove::moteur
