#include "verification/ListeFichiers.hpp"

#include <cerrno>
#include <memory>
#include <optional>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace keltrove::verification {
namespace {

// Ceux des derniers niveaux : remonter plus haut les rouvre.
constexpr std::size_t dossiersTenus = 32;

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

using Identite = std::pair<dev_t, ino_t>;

std::optional<Identite> identiteDe(DIR* dossier) {
  struct stat etat{};
  const int descripteur = dossier != nullptr ? ::dirfd(dossier) : -1;
  if (descripteur < 0 || ::fstat(descripteur, &etat) != 0) return std::nullopt;
  return Identite{etat.st_dev, etat.st_ino};
}

Dossier ouvrir(int parent, const std::string& nom) {
  const int descripteur = ::openat(parent, nom.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descripteur < 0) return nullptr;
  Dossier dossier(::fdopendir(descripteur));
  if (!dossier) ::close(descripteur);
  return dossier;
}

// Du haut vers le bas, par descripteurs plutôt que par chemins : un arbre plus profond que le plus long
// chemin permis n’y cache rien, et un dossier échangé pendant la marche ne s’y glisse pas.
class Marche {
public:
  explicit Marche(const Mesure& mesure) : mesure_(mesure) {}

  std::vector<std::string> fichiers;

  std::optional<Refus> parcourir(const std::string& racine) {
    if (const auto refus = entrer(ouvrir(AT_FDCWD, racine), "")) return refus;
    while (!niveaux_.empty()) {
      if (niveaux_.back().aVoir.empty()) {
        sortir();
        continue;
      }
      const auto nom = std::move(niveaux_.back().aVoir.back());
      niveaux_.back().aVoir.pop_back();
      if (!rouvrirLeDernier()) return Refus::illisible;
      if (const auto refus = entrer(ouvrir(::dirfd(niveaux_.back().dossier.get()), nom), nom)) return refus;
    }
    return std::nullopt;
  }

private:
  struct Niveau {
    std::string nom;
    Identite identite;
    Dossier dossier; // vide, sauf le premier, loin au-dessus de celui où l’on est
    std::vector<std::string> aVoir;
  };

  std::optional<Refus> entrer(Dossier dossier, const std::string& nom) {
    const auto identite = identiteDe(dossier.get());
    if (!identite || !ancetres_.insert(*identite).second) return Refus::illisible;
    niveaux_.push_back({.nom = nom, .identite = *identite, .dossier = std::move(dossier), .aVoir = {}});
    if (!vus_.insert(*identite).second) ++revus_;
    if (niveaux_.size() > mesure_.niveaux || revus_ > mesure_.revus) return Refus::demesure;
    fermerLoinAuDessusDe(niveaux_.size() - 1);
    if (niveaux_.size() > 1) chemin_ += nom + "/";
    octets_ += chemin_.size();
    if (!lire(niveaux_.back())) return Refus::illisible;
    return octets_ > mesure_.octets ? std::optional(Refus::demesure) : std::nullopt;
  }

  void sortir() {
    const auto& niveau = niveaux_.back();
    ancetres_.erase(niveau.identite);
    if (niveaux_.size() > 1) chemin_.resize(chemin_.size() - niveau.nom.size() - 1);
    niveaux_.pop_back();
  }

  bool lire(Niveau& niveau) {
    errno = 0;
    while (const auto* entree = ::readdir(niveau.dossier.get())) {
      voir(niveau, *entree);
      if (octets_ > mesure_.octets) return true;
      errno = 0;
    }
    return errno == 0;
  }

  void voir(Niveau& niveau, const dirent& entree) {
    const std::string_view nom = entree.d_name;
    if (nom == "." || nom == ".." || horsInventaire().contains(nom)) return;
    const auto sorte = sorteDe(::dirfd(niveau.dossier.get()), entree);
    if (sorte == Sorte::dossier) niveau.aVoir.emplace_back(nom);
    if (sorte != Sorte::fichier) return;
    fichiers.push_back(chemin_ + std::string(nom));
    octets_ += fichiers.back().size();
  }

  bool rouvrirLeDernier() {
    auto ici = niveaux_.size() - 1;
    while (!niveaux_[ici].dossier)
      --ici;
    while (++ici < niveaux_.size()) {
      auto& niveau = niveaux_[ici];
      niveau.dossier = ouvrir(::dirfd(niveaux_[ici - 1].dossier.get()), niveau.nom);
      if (identiteDe(niveau.dossier.get()) != niveau.identite) return false;
      fermerLoinAuDessusDe(ici);
    }
    return true;
  }

  void fermerLoinAuDessusDe(std::size_t ici) {
    if (ici > dossiersTenus) niveaux_[ici - dossiersTenus].dossier.reset();
  }

  const Mesure mesure_;
  std::vector<Niveau> niveaux_;
  std::set<Identite> ancetres_;
  std::string chemin_; // du dernier niveau, sa barre comprise
  std::set<Identite> vus_;
  std::size_t revus_ = 0;
  std::size_t octets_ = 0;
};

} // namespace

const std::set<std::string, std::less<>>& horsInventaire() {
  static const std::set<std::string, std::less<>> noms{"node_modules", "inventaire.json", "inventaire.sig",
                                                       ".DS_Store"};
  return noms;
}

std::expected<std::vector<std::string>, Refus> listerFichiers(const std::string& dossier,
                                                              const Mesure& mesure) {
  Marche marche(mesure);
  if (const auto refus = marche.parcourir(dossier)) return std::unexpected(*refus);
  return std::move(marche.fichiers);
}

} // namespace keltrove::verification
