// ClePublique : la clé Ed25519 (RFC 8032) de qui a signé l’inventaire.
//
// Une clé se déplace et ne se copie pas. Utilisable depuis tout fil.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct evp_pkey_st;

namespace keltrove::verification {

class ClePublique {
public:
  static constexpr std::size_t longueur = 32; // octets

  // Les trente-deux octets de la clé nue ; rien s’ils n’en font pas une.
  static std::optional<ClePublique> depuis(std::string_view octets);

  // Faux d’une signature fausse comme d’une signature de mauvaise longueur ; rien ne les distingue.
  bool aSigne(std::string_view message, std::string_view signature) const;

private:
  struct Rendre {
    void operator()(evp_pkey_st* cle) const;
  };
  std::unique_ptr<evp_pkey_st, Rendre> cle_;
};

// Lit un fichier de clé : un bloc PEM, ou le base64 des trente-deux octets nus. Seul le saut de ligne sépare
// les lignes ; les lignes vides et celles qui commencent par « ----- » ne comptent pas. Rien si la clé est
// illisible, ou si le fichier dépasse un mébioctet.
std::optional<ClePublique> chargerClePublique(const std::string& chemin);

// La même lecture, sur le texte du fichier. Les trente-deux derniers octets sont la clé : ce qui les précède
// dans un bloc PEM n’en dit que la sorte.
std::optional<ClePublique> lireClePublique(std::string_view texte);

} // namespace keltrove::verification
