#include "moteur/Sonde.hpp"

#include "moteur/TenantDuPort.hpp"
#include "socle/JSON.hpp"
#include "socle/Reglages.hpp"
#include "socle/RequeteHTTP.hpp"
#include "socle/Texte.hpp"

#include <limits>

#include <fmt/format.h>

namespace keltrove::moteur {
namespace {

std::string adresse(int port, std::string_view chemin) {
  return fmt::format("http://127.0.0.1:{}{}", port, chemin);
}

// Un jeton qui contient une fin de ligne ajouterait un second en-tête à la requête.
bool tientDansUnEntete(std::string_view jeton) {
  return jeton.find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos;
}

int entierDuCarnet(const nlohmann::json& sante) {
  const auto carnet = sante.find("carnet");
  if (carnet == sante.end() || !carnet->is_object()) return 0;
  const auto terminaux = carnet->find("terminaux");
  if (terminaux == carnet->end() || !terminaux->is_number()) return 0;
  const auto valeur = terminaux->get<double>();
  const auto entier = static_cast<double>(std::numeric_limits<int>::max());
  if (!(valeur >= -entier && valeur <= entier) || valeur != static_cast<double>(static_cast<int>(valeur)))
    return 0;
  return static_cast<int>(valeur);
}

} // namespace

bool cEstBienKeltrove(int port) {
  if (tenantDuPort(port) == Tenant::etranger) return false;
  const auto reponse =
      socle::obtenir({.url = adresse(port, "/"), .inactiviteMaximale = 1.5, .dureeMaximale = 2.5});
  return reponse && reponse->statut == 200 && reponse->corps.contains("keltrove-jeton") &&
         socle::estUTF8(reponse->corps);
}

std::optional<Sante> sante(int port) {
  const auto jeton = socle::Reglages::jeton();
  if (!jeton || !tientDansUnEntete(*jeton) || tenantDuPort(port) == Tenant::etranger) return std::nullopt;
  const auto reponse = socle::obtenir({.url = adresse(port, "/api/sante"),
                                       .entetes = {"x-keltrove-jeton: " + *jeton},
                                       .inactiviteMaximale = 2.0,
                                       .dureeMaximale = 4.0,
                                       .redirections = socle::Redirections::memeOrigineSeule});
  if (!reponse || reponse->statut != 200) return std::nullopt;
  return lireSante(reponse->corps);
}

std::optional<Sante> lireSante(std::string_view corps) {
  const auto sante = socle::lireJSON(corps);
  if (!sante || !sante->is_object()) return std::nullopt;
  const auto version = sante->find("version");
  return Sante{.version = version != sante->end() && version->is_string() ? version->get<std::string>() : "?",
               .terminauxAuCarnet = entierDuCarnet(*sante)};
}

} // namespace keltrove::moteur
