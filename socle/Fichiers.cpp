#include "socle/Fichiers.hpp"

#include "socle/Descripteur.hpp"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace keltrove::socle {
namespace {

bool toutEcrire(int descripteur, std::string_view contenu) {
  while (!contenu.empty()) {
    const auto ecrits = ::write(descripteur, contenu.data(), contenu.size());
    if (ecrits < 0 && errno == EINTR) continue;
    if (ecrits <= 0) return false;
    contenu.remove_prefix(static_cast<std::size_t>(ecrits));
  }
  return true;
}

} // namespace

std::string ajouterComposant(std::string_view dossier, std::string_view nom) {
  while (nom.starts_with('/'))
    nom.remove_prefix(1);
  if (dossier.empty()) return std::string(nom);
  while (dossier.ends_with('/'))
    dossier.remove_suffix(1);
  return std::string(dossier) + "/" + std::string(nom);
}

std::string dossierDe(std::string_view chemin) {
  while (chemin.size() > 1 && chemin.ends_with('/'))
    chemin.remove_suffix(1);
  const auto barre = chemin.rfind('/');
  if (barre == std::string_view::npos) return "";
  return std::string(chemin.substr(0, barre == 0 ? 1 : barre));
}

bool existe(const std::string& chemin) {
  struct stat etat{};
  return ::stat(chemin.c_str(), &etat) == 0;
}

bool estExecutable(const std::string& chemin) {
  struct stat etat{};
  return ::stat(chemin.c_str(), &etat) == 0 && !S_ISDIR(etat.st_mode) && ::access(chemin.c_str(), X_OK) == 0;
}

std::optional<std::string> lireFichier(const std::string& chemin, std::size_t maximum) {
  // O_NONBLOCK : ouvrir un tube nommé sans écrivain attendrait sinon sans fin.
  const Descripteur fichier(::open(chemin.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
  struct stat etat{};
  if (fichier.numero() < 0 || ::fstat(fichier.numero(), &etat) != 0 || !S_ISREG(etat.st_mode)) return {};
  if (static_cast<std::uintmax_t>(etat.st_size) > maximum) return {};

  std::string contenu;
  char bloc[16384];
  for (;;) {
    const auto lus = ::read(fichier.numero(), bloc, sizeof bloc);
    if (lus < 0 && errno == EINTR) continue;
    if (lus < 0) return {};
    if (lus == 0) return contenu;
    contenu.append(bloc, static_cast<std::size_t>(lus));
    if (contenu.size() > maximum) return {};
  }
}

bool ecrireFichier(const std::string& chemin, std::string_view contenu) {
  std::error_code ignoree;
  std::filesystem::create_directories(dossierDe(chemin), ignoree);

  auto voisin = chemin + ".XXXXXX";
  Descripteur fichier(::mkostemp(voisin.data(), O_CLOEXEC));
  if (fichier.numero() < 0) return false;
  const bool ecrit = toutEcrire(fichier.numero(), contenu) && fichier.fermer();
  if (ecrit && ::rename(voisin.c_str(), chemin.c_str()) == 0) return true;
  ::unlink(voisin.c_str());
  return false;
}

} // namespace keltrove::socle
