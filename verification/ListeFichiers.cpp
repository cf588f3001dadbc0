#include "verification/ListeFichiers.hpp"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace keltrove::verification {
namespace {

constexpr std::size_t niveauxMaximaux = 4000;
constexpr std::size_t dossiersMaximaux = 100'000;

struct FermerDossier {
  void operator()(DIR* dossier) const { ::closedir(dossier); }
};
using Dossier = std::unique_ptr<DIR, FermerDossier>;

enum class Sorte { rien, fichier, dossier };

Sorte sorteDe(int dossier, const dirent& entree) {
  if (entree.d_type == DT_REG) return Sorte::fichier;
  if (entree.d_type == DT_DIR) return Sorte::dossier;
  struct stat etat{};
  if (::fstatat(dossier, entree.d_name, &etat, 0) == 0)
    return S_ISDIR(etat.st_mode) ? Sorte::dossier : Sorte::fichier;
  // Ce qu’un droit ou une panne cache n’est pas absent : mieux vaut un fichier de trop qu’un fichier non vu.
  const bool absente = errno == ENOENT || errno == ELOOP || errno == ENOTDIR;
  return absente ? Sorte::rien : Sorte::fichier;
}

class Marche {
public:
  std::vector<std::string> fichiers;

  // Prend le descripteur. Par descripteurs plutôt que par chemins : un arbre plus profond que le plus long
  // chemin permis n’y cache rien.
  bool marcher(int descripteur, const std::string& relatif) {
    const Dossier dossier(ouvrir(descripteur));
    if (!dossier || !entrer(descripteur)) return false;
    errno = 0;
    while (const auto* entree = ::readdir(dossier.get())) {
      if (!voir(descripteur, *entree, relatif)) return false;
      errno = 0;
    }
    ancetres_.pop_back();
    return errno == 0;
  }

private:
  using Identite = std::pair<dev_t, ino_t>;

  static DIR* ouvrir(int descripteur) {
    if (descripteur < 0) return nullptr;
    auto* dossier = ::fdopendir(descripteur);
    if (dossier == nullptr) ::close(descripteur);
    return dossier;
  }

  bool entrer(int descripteur) {
    struct stat etat{};
    if (::fstat(descripteur, &etat) != 0) return false;
    const Identite identite{etat.st_dev, etat.st_ino};
    if (std::ranges::find(ancetres_, identite) != ancetres_.end()) return false;
    ancetres_.push_back(identite);
    return ancetres_.size() <= niveauxMaximaux && ++dossiers_ <= dossiersMaximaux;
  }

  bool voir(int dossier, const dirent& entree, const std::string& relatif) {
    const std::string_view nom = entree.d_name;
    if (nom == "." || nom == ".." || horsInventaire().contains(nom)) return true;
    const auto sorte = sorteDe(dossier, entree);
    if (sorte == Sorte::rien) return true;
    auto chemin = relatif.empty() ? std::string(nom) : relatif + "/" + std::string(nom);
    if (sorte == Sorte::dossier)
      return marcher(::openat(dossier, entree.d_name, O_RDONLY | O_DIRECTORY | O_CLOEXEC), chemin);
    fichiers.push_back(std::move(chemin));
    return true;
  }

  std::vector<Identite> ancetres_;
  std::size_t dossiers_ = 0;
};

} // namespace

const std::set<std::string, std::less<>>& horsInventaire() {
  static const std::set<std::string, std::less<>> noms{"node_modules", "inventaire.json", "inventaire.sig",
                                                       ".DS_Store"};
  return noms;
}

std::optional<std::vector<std::string>> listerFichiers(const std::string& dossier) {
  Marche marche;
  if (!marche.marcher(::open(dossier.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC), "")) return std::nullopt;
  return std::move(marche.fichiers);
}

} // namespace keltrove::verification
