// Empreintes : l’empreinte SHA-256 (FIPS 180-4) des fichiers d’un dossier.
//
// Le calcul et la place de lecture servent d’un fichier à l’autre : un objet par fil. Un dossier qui ne
// s’ouvre pas rend chaque fichier illisible.
#pragma once

#include "socle/Descripteur.hpp"

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

struct evp_md_ctx_st;
struct evp_md_st;

namespace keltrove::verification {

class Empreintes {
public:
  // Tient le dossier ouvert : le renommer pendant le calcul n’y change rien.
  explicit Empreintes(const std::string& dossier);
  Empreintes(const Empreintes&) = delete;
  Empreintes& operator=(const Empreintes&) = delete;
  ~Empreintes();

  // `chemin` part du dossier, et peut dépasser la longueur que le système permet d’un trait. Rend
  // soixante-quatre chiffres hexadécimaux minuscules. Rien si ce n’est pas un fichier ordinaire, s’il ne peut
  // être lu, s’il ne tient pas en mémoire ou s’il change de taille pendant la lecture. Les liens sont suivis.
  std::optional<std::string> calculer(const std::string& chemin);

private:
  struct Rendre {
    void operator()(evp_md_ctx_st* contexte) const;
    void operator()(evp_md_st* algorithme) const;
  };

  int ouvrir(const std::string& chemin) const;
  bool ajouterToutLeFichier(int descripteur, std::size_t taille);
  bool ajouter(std::span<const char> octets);

  socle::Descripteur dossier_;
  std::unique_ptr<evp_md_st, Rendre> algorithme_;
  std::unique_ptr<evp_md_ctx_st, Rendre> contexte_;
  std::vector<char> place_; // pour les petits fichiers, l’un après l’autre
};

} // namespace keltrove::verification
