// DossierSigne : un dossier temporaire, son inventaire et la clé qui le signe.
#pragma once

#include "verification/VerificationCode.hpp"

#include <map>
#include <string>
#include <string_view>

#include <openssl/evp.h>

namespace keltrove::essais {

class DossierSigne {
public:
  DossierSigne();
  DossierSigne(const DossierSigne&) = delete;
  DossierSigne& operator=(const DossierSigne&) = delete;
  ~DossierSigne();

  std::string dossier() const { return racine_ + "/code"; }
  std::string cle() const { return racine_ + "/clé publique"; }
  std::string chemin(const std::string& relatif) const { return dossier() + "/" + relatif; }

  // Écrit un fichier du dossier, sans toucher à l’inventaire.
  void ecrire(const std::string& relatif, std::string_view contenu) const;
  // L’ajoute aussi à l’inventaire à venir, avec la bonne empreinte.
  void lister(const std::string& relatif, std::string_view contenu);
  // Change l’empreinte d’un fichier listé, ou liste un fichier absent.
  void pretendre(const std::string& relatif, const std::string& empreinte);

  // Écrit et signe l’inventaire, ou cet inventaire-ci.
  void signer() const;
  void signer(std::string_view inventaire) const;
  // Le texte de la clé publique : le base64 des octets nus.
  std::string cleNue() const;
  void ecrireLaCle(std::string_view texte) const;
  std::string signatureDe(std::string_view octets) const; // en base64

  verification::VerificationCode::Resultat verifier() const;

private:
  std::string racine_;
  EVP_PKEY* privee_;
  std::map<std::string, std::string> empreintes_;
};

std::string enBase64(std::string_view octets);
std::string empreinteDe(std::string_view octets);

} // namespace keltrove::essais
