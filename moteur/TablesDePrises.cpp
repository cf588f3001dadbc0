#include "moteur/TablesDePrises.hpp"

#include "socle/Fichiers.hpp"
#include "socle/LireNombre.hpp"
#include "socle/Texte.hpp"

#include <cstring>
#include <system_error>

namespace keltrove::moteur {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t chiffresDUnMot = 8;
constexpr std::size_t octetsDUnMot = 4;
constexpr std::size_t tailleMaximale = std::size_t{64} << 20; // quelques centaines de milliers de prises

// Le noyau écrit chaque mot de l’adresse comme un nombre de la machine : en mémoire, il est dans
// l’ordre du réseau.
std::optional<AdresseIP> lireAdresse(std::string_view texte) {
  AdresseIP adresse{};
  if (texte.size() != chiffresDUnMot && texte.size() != 4 * chiffresDUnMot) return std::nullopt;
  const bool courte = texte.size() == chiffresDUnMot;
  if (courte) adresse[10] = adresse[11] = 0xff;
  auto* ou = adresse.data() + (courte ? adresse.size() - octetsDUnMot : 0);
  for (; !texte.empty(); texte.remove_prefix(chiffresDUnMot), ou += octetsDUnMot) {
    const auto mot = socle::lireNombre<std::uint32_t>(texte.substr(0, chiffresDUnMot), 16);
    if (!mot) return std::nullopt;
    std::memcpy(ou, &*mot, octetsDUnMot);
  }
  return adresse;
}

std::optional<PriseALEcoute> lireLigne(std::string_view ligne) {
  const auto champs = socle::decouper(ligne, ' ', socle::MorceauxVides::ecartes);
  if (champs.size() < 10 || champs[3] != "0A") return std::nullopt; // 0A : TCP_LISTEN
  const std::string_view locale = champs[1];
  const auto separation = locale.find(':');
  if (separation == std::string_view::npos) return std::nullopt;
  const auto adresse = lireAdresse(locale.substr(0, separation));
  const auto port = socle::lireNombre<std::uint16_t>(locale.substr(separation + 1), 16);
  const auto compte = socle::lireNombre<uid_t>(champs[7]);
  if (!adresse || !port || *port == 0 || !compte) return std::nullopt;
  return PriseALEcoute{*adresse, *port, *compte, champs[9]};
}

} // namespace

std::vector<PriseALEcoute> lireTableDePrises(std::string_view texte) {
  std::vector<PriseALEcoute> prises;
  for (const auto& ligne : socle::decouper(texte, '\n', socle::MorceauxVides::ecartes))
    if (auto prise = lireLigne(ligne)) prises.push_back(*std::move(prise));
  return prises;
}

std::optional<std::vector<PriseALEcoute>> lireTablesDePrises(const fs::path& dossier) {
  std::string texte;
  for (const auto* nom : {"tcp", "tcp6"}) {
    std::error_code erreur;
    const auto genre = fs::status(dossier / nom, erreur).type();
    if (genre == fs::file_type::not_found && std::string_view(nom) == "tcp6") continue;
    const auto table = socle::lireFichier((dossier / nom).string(), tailleMaximale);
    if (!table) return std::nullopt;
    texte += *table;
  }
  return lireTableDePrises(texte);
}

} // namespace keltrove::moteur
