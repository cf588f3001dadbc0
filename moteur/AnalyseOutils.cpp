#include "moteur/AnalyseOutils.hpp"

#include "socle/LireNombre.hpp"
#include "socle/Texte.hpp"

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <unordered_set>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace keltrove::moteur {
namespace {

using socle::decouper;
using socle::MorceauxVides;

// Un signe facultatif puis des chiffres, et rien d’autre.
std::optional<std::int32_t> lireEntier(std::string_view texte) {
  if (texte.starts_with('+')) {
    texte.remove_prefix(1);
    if (texte.starts_with('-')) return std::nullopt;
  }
  return socle::lireNombre<std::int32_t>(texte);
}

std::optional<int> portDeLaLigne(std::string_view ligne) {
  const auto champs = decouper(ligne, ' ', MorceauxVides::ecartes);
  const auto adresse = std::find_if(champs.rbegin(), champs.rend(),
                                    [](const std::string& champ) { return champ.contains(':'); });
  if (adresse == champs.rend()) return std::nullopt;
  const auto morceaux = decouper(*adresse, ':', MorceauxVides::ecartes);
  if (morceaux.empty()) return std::nullopt;
  const auto port = lireEntier(morceaux.back());
  return port && *port > 0 ? port : std::nullopt;
}

// « 127.0.0.1 », « ::1 », ou « * » pour toutes celles de la famille.
std::optional<AdresseIP> lireAdresse(std::string_view texte, bool ipv6) {
  const std::string hote(texte == "*" ? (ipv6 ? "::" : "0.0.0.0") : texte);
  AdresseIP adresse{};
  if (ipv6)
    return ::inet_pton(AF_INET6, hote.c_str(), adresse.data()) == 1 ? std::optional(adresse) : std::nullopt;
  adresse[10] = adresse[11] = 0xff;
  return ::inet_pton(AF_INET, hote.c_str(), adresse.data() + 12) == 1 ? std::optional(adresse) : std::nullopt;
}

std::optional<PriseALEcoute> lirePrise(std::string_view ou, char avantLePort, bool ipv6) {
  const auto coupure = ou.rfind(avantLePort);
  if (coupure == std::string_view::npos) return std::nullopt;
  auto hote = ou.substr(0, coupure);
  if (hote.starts_with('[') && hote.ends_with(']')) hote = hote.substr(1, hote.size() - 2);
  const auto port = lireEntier(ou.substr(coupure + 1));
  const auto adresse = lireAdresse(hote, ipv6);
  if (!port || !adresse) return std::nullopt;
  return PriseALEcoute{.adresse = *adresse, .port = *port, .compte = 0, .numero = {}};
}

} // namespace

std::vector<pid_t> lirePgrep(std::string_view sortie) {
  std::vector<pid_t> enfants;
  if (!socle::estUTF8(sortie)) return enfants;
  for (const auto& ligne : decouper(sortie, '\n', MorceauxVides::ecartes))
    if (const auto pid = lireEntier(socle::rognerEspaces(ligne))) enfants.push_back(*pid);
  return enfants;
}

std::vector<int> lireLsof(std::string_view sortie) {
  std::vector<int> ports;
  std::unordered_set<int> vus;
  if (!socle::estUTF8(sortie)) return ports;
  const auto lignes = decouper(sortie, '\n', MorceauxVides::ecartes);
  for (std::size_t i = 1; i < lignes.size(); ++i) {
    const auto port = portDeLaLigne(lignes[i]);
    if (port && vus.insert(*port).second) ports.push_back(*port);
  }
  return ports;
}

std::vector<PriseALEcoute> lirePrisesDeLsof(std::string_view sortie, uid_t compte) {
  enum Champ : std::size_t { famille = 4, numero = 5, nom = 8, champs };
  std::vector<PriseALEcoute> prises;
  std::set<std::string> vues;
  if (!socle::estUTF8(sortie)) return prises;
  for (const auto& ligne : decouper(sortie, '\n', MorceauxVides::ecartes)) {
    const auto mots = decouper(ligne, ' ', MorceauxVides::ecartes);
    if (mots.size() < champs) continue;
    auto prise = lirePrise(mots[nom], ':', mots[famille] == "IPv6");
    if (!prise || !vues.insert(mots[numero]).second) continue;
    prise->compte = compte;
    prise->numero = mots[numero];
    prises.push_back(*std::move(prise));
  }
  return prises;
}

std::optional<std::vector<PriseALEcoute>> lireNetstat(std::string_view sortie) {
  enum Champ : std::size_t { protocole = 0, locale = 3, etat = 5, champs };
  if (!socle::estUTF8(sortie) || !sortie.contains("Local Address")) return std::nullopt;
  std::vector<PriseALEcoute> prises;
  for (const auto& ligne : decouper(sortie, '\n', MorceauxVides::ecartes)) {
    const auto mots = decouper(ligne, ' ', MorceauxVides::ecartes);
    if (mots.size() < champs || mots[etat] != "LISTEN" || !mots[protocole].starts_with("tcp")) continue;
    // « tcp46 » écoute aussi en IPv4, comme une prise IPv6 que rien ne restreint.
    if (auto prise = lirePrise(mots[locale], '.', mots[protocole] != "tcp4"))
      prises.push_back(*std::move(prise));
  }
  return prises;
}

} // namespace keltrove::moteur
