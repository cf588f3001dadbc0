#include "verification/Empreintes.hpp"

#include "verification/Memoire.hpp"

#include <array>
#include <climits>
#include <string_view>

#include <fcntl.h>
#include <fmt/format.h>
#include <openssl/evp.h>
#include <sys/stat.h>
#include <unistd.h>

namespace keltrove::verification {
namespace {

constexpr std::size_t petitFichier = 1024UL * 1024;
constexpr auto options = O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;

// Ni raccourci ni allongé pendant la lecture. Certains fichiers du système se disent vides et ne le sont pas.
bool faitBien(int descripteur, std::size_t taille) {
  struct stat etat{};
  char octet = 0;
  return ::fstat(descripteur, &etat) == 0 && static_cast<std::size_t>(etat.st_size) == taille &&
         ::pread(descripteur, &octet, 1, etat.st_size) == 0;
}

} // namespace

void Empreintes::Rendre::operator()(evp_md_ctx_st* contexte) const {
  EVP_MD_CTX_free(contexte);
}
void Empreintes::Rendre::operator()(evp_md_st* algorithme) const {
  EVP_MD_free(algorithme);
}

Empreintes::Empreintes(const std::string& dossier)
    : dossier_(::open(dossier.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)),
      algorithme_(EVP_MD_fetch(nullptr, "SHA256", nullptr)), contexte_(EVP_MD_CTX_new()),
      place_(petitFichier) {}

Empreintes::~Empreintes() = default;

std::optional<std::string> Empreintes::calculer(const std::string& chemin) {
  const socle::Descripteur fichier(ouvrir(chemin));
  struct stat etat{};
  if (fichier.numero() < 0 || ::fstat(fichier.numero(), &etat) != 0 || !S_ISREG(etat.st_mode))
    return std::nullopt;
  std::array<unsigned char, EVP_MAX_MD_SIZE> empreinte{};
  unsigned int longueur = 0;
  if (EVP_DigestInit_ex2(contexte_.get(), algorithme_.get(), nullptr) != 1 ||
      !ajouterToutLeFichier(fichier.numero(), static_cast<std::size_t>(etat.st_size)) ||
      EVP_DigestFinal_ex(contexte_.get(), empreinte.data(), &longueur) != 1)
    return std::nullopt;
  std::string texte;
  for (unsigned int i = 0; i < longueur; ++i)
    fmt::format_to(std::back_inserter(texte), "{:02x}", empreinte[i]);
  return texte;
}

// Un chemin plus long que le système n’en prend se suit par étapes.
int Empreintes::ouvrir(const std::string& chemin) const {
  std::string_view reste = chemin;
  std::optional<socle::Descripteur> etape;
  const auto ici = [&] { return etape ? etape->numero() : dossier_.numero(); };
  while (reste.size() >= PATH_MAX) {
    const auto barre = reste.rfind('/', PATH_MAX - 1);
    if (barre == std::string_view::npos) return -1;
    const std::string debut(reste.substr(0, barre));
    const int suivant = ::openat(ici(), debut.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    etape.emplace(suivant);
    reste.remove_prefix(barre + 1);
  }
  const std::string fin(reste);
  struct stat etat{};
  // Ouvrir un périphérique peut agir sur lui : on regarde avant d’ouvrir, et encore après.
  if (::fstatat(ici(), fin.c_str(), &etat, 0) != 0 || !S_ISREG(etat.st_mode)) return -1;
  return ::openat(ici(), fin.c_str(), options);
}

bool Empreintes::ajouterToutLeFichier(int descripteur, std::size_t taille) {
  if (taille > place_.size())
    return Memoire(descripteur, taille).confier([this](auto octets) { return ajouter(octets); }) &&
           faitBien(descripteur, taille);
  const std::span octets(place_.data(), taille);
  return lireExactement(descripteur, octets) && ajouter(octets) && faitBien(descripteur, taille);
}

bool Empreintes::ajouter(std::span<const char> octets) {
  return EVP_DigestUpdate(contexte_.get(), octets.data(), octets.size()) == 1;
}

} // namespace keltrove::verification
