#include "moteur/ArbreProcessus.hpp"
#include "moteur/TablesDePrises.hpp"
#include "socle/LireNombre.hpp"
#include "socle/Texte.hpp"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include <fmt/format.h>

namespace keltrove::moteur {
namespace {

namespace fs = std::filesystem;

struct Fiche {
  pid_t pid = -1;
  pid_t parent = -1;
  char etat = '?';
  std::uint64_t naissance = 0; // en tics depuis l’allumage de la machine
};

// Les champs de /proc/<pid>/stat, numérotés comme dans proc(5) à partir de l’état, le troisième.
std::optional<Fiche> lireFiche(pid_t pid) {
  std::ifstream fichier(fmt::format("/proc/{}/stat", pid));
  std::string texte;
  if (!std::getline(fichier, texte, '\0')) return std::nullopt;
  // Le nom du programme, entre parenthèses, peut contenir des espaces et des parenthèses.
  const auto finDuNom = texte.rfind(')');
  if (finDuNom == std::string::npos) return std::nullopt;
  const auto champs =
      socle::decouper(std::string_view(texte).substr(finDuNom + 1), ' ', socle::MorceauxVides::ecartes);
  if (champs.size() < 20) return std::nullopt;
  const auto parent = socle::lireNombre<pid_t>(champs[1]);
  const auto naissance = socle::lireNombre<std::uint64_t>(champs[19]);
  if (!parent || !naissance) return std::nullopt;
  return Fiche{pid, *parent, champs[0][0], *naissance};
}

template <typename Visite>
void parcourir(const std::string& dossier, Visite visiter) {
  std::error_code erreur;
  for (fs::directory_iterator i(dossier, erreur), fin; !erreur && i != fin; i.increment(erreur))
    visiter(i->path());
}

using Familles = std::map<pid_t, std::vector<Fiche>>;

Familles lireFamilles() {
  Familles familles;
  parcourir("/proc", [&](const fs::path& entree) {
    const auto pid = socle::lireNombre<pid_t>(entree.filename().string());
    if (!pid) return;
    if (const auto fiche = lireFiche(*pid)) familles[fiche->parent].push_back(*fiche);
  });
  for (auto& [parent, enfants] : familles)
    std::ranges::sort(enfants, {}, [](const Fiche& f) { return std::pair(f.naissance, f.pid); });
  return familles;
}

void ajouterDescendants(const Familles& familles, pid_t pid, int profondeur, std::vector<pid_t>& liste) {
  const auto enfants = familles.find(pid);
  if (profondeur <= 0 || enfants == familles.end()) return;
  for (const auto& enfant : enfants->second) {
    liste.push_back(enfant.pid);
    ajouterDescendants(familles, enfant.pid, profondeur - 1, liste);
  }
}

// Prise n° d’inode → port, pour les prises à l’écoute de l’espace réseau du processus.
std::map<std::string, int> prisesALEcoute(pid_t pid) {
  std::map<std::string, int> prises;
  for (const auto& prise :
       lireTablesDePrises(fmt::format("/proc/{}/net", pid)).value_or(std::vector<PriseALEcoute>{}))
    prises.emplace(prise.numero, prise.port);
  return prises;
}

std::map<int, std::string> prisesOuvertes(pid_t pid) {
  constexpr std::string_view debut = "socket:[";
  std::map<int, std::string> prises;
  parcourir(fmt::format("/proc/{}/fd", pid), [&](const fs::path& entree) {
    std::error_code erreur;
    const auto cible = fs::read_symlink(entree, erreur).string();
    const auto descripteur = socle::lireNombre<int>(entree.filename().string());
    if (erreur || !descripteur || !cible.starts_with(debut)) return;
    prises.emplace(*descripteur, cible.substr(debut.size(), cible.size() - debut.size() - 1));
  });
  return prises;
}

} // namespace

std::vector<pid_t> descendants(pid_t pid, int profondeur) {
  std::vector<pid_t> liste;
  if (profondeur > 0) ajouterDescendants(lireFamilles(), pid, profondeur, liste);
  return liste;
}

std::vector<int> portsEcoutesPar(pid_t pid) {
  std::vector<int> ports;
  const auto ecoutes = prisesALEcoute(pid);
  for (const auto& [descripteur, prise] : prisesOuvertes(pid)) {
    const auto ecoute = ecoutes.find(prise);
    if (ecoute != ecoutes.end() && std::ranges::find(ports, ecoute->second) == ports.end())
      ports.push_back(ecoute->second);
  }
  return ports;
}

Identite identifier(pid_t pid) {
  const auto fiche = lireFiche(pid);
  return {pid, fiche ? fiche->naissance : 0};
}

bool enVie(const Identite& identite) {
  if (::kill(identite.pid, 0) != 0) return false;
  const auto fiche = lireFiche(identite.pid);
  // Illisible faute de descripteur, et non faute de processus : mieux vaut attendre encore que
  // conclure à sa fin.
  if (!fiche) return ::kill(identite.pid, 0) == 0;
  return fiche->etat != 'Z' && fiche->naissance == identite.naissance;
}

} // namespace keltrove::moteur
