#include "DossierSigne.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace keltrove::essais {
namespace {

const unsigned char* octetsDe(std::string_view texte) {
  return reinterpret_cast<const unsigned char*>(texte.data());
}

void ecrireA(const std::string& chemin, std::string_view contenu) {
  std::filesystem::create_directories(std::filesystem::path(chemin).parent_path());
  std::ofstream(chemin, std::ios::binary) << contenu;
}

} // namespace

std::string enBase64(std::string_view octets) {
  std::string texte((octets.size() + 2) / 3 * 4 + 1, '\0');
  const int longueur = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(texte.data()), octetsDe(octets),
                                       static_cast<int>(octets.size()));
  texte.resize(static_cast<std::size_t>(longueur));
  return texte;
}

std::string empreinteDe(std::string_view octets) {
  unsigned char empreinte[32];
  EVP_Digest(octets.data(), octets.size(), empreinte, nullptr, EVP_sha256(), nullptr);
  std::string texte;
  for (const auto octet : empreinte)
    texte += fmt::format("{:02x}", octet);
  return texte;
}

DossierSigne::DossierSigne()
    : racine_("/tmp/inventaire d’essai.XXXXXX"), privee_(EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519")) {
  if (::mkdtemp(racine_.data()) == nullptr) std::abort();
  std::filesystem::create_directory(dossier());
  ecrireLaCle(cleNue());
}

DossierSigne::~DossierSigne() {
  EVP_PKEY_free(privee_);
  std::filesystem::remove_all(racine_);
}

void DossierSigne::ecrire(const std::string& relatif, std::string_view contenu) const {
  ecrireA(chemin(relatif), contenu);
}

void DossierSigne::lister(const std::string& relatif, std::string_view contenu) {
  ecrire(relatif, contenu);
  empreintes_[relatif] = empreinteDe(contenu);
}

void DossierSigne::pretendre(const std::string& relatif, const std::string& empreinte) {
  empreintes_[relatif] = empreinte;
}

void DossierSigne::signer() const {
  signer(nlohmann::json{{"fichiers", empreintes_}, {"version", 3}}.dump());
}

void DossierSigne::signer(std::string_view inventaire) const {
  ecrire("inventaire.json", inventaire);
  ecrire("inventaire.sig", signatureDe(inventaire) + "\n");
}

std::string DossierSigne::signatureDe(std::string_view octets) const {
  auto* contexte = EVP_MD_CTX_new();
  std::size_t longueur = 64;
  std::string signature(longueur, '\0');
  EVP_DigestSignInit(contexte, nullptr, nullptr, nullptr, privee_);
  EVP_DigestSign(contexte, reinterpret_cast<unsigned char*>(signature.data()), &longueur, octetsDe(octets),
                 octets.size());
  EVP_MD_CTX_free(contexte);
  return enBase64(signature);
}

std::string DossierSigne::cleNue() const {
  std::size_t longueur = 32;
  std::string nue(longueur, '\0');
  EVP_PKEY_get_raw_public_key(privee_, reinterpret_cast<unsigned char*>(nue.data()), &longueur);
  return enBase64(nue);
}

void DossierSigne::ecrireLaCle(std::string_view texte) const {
  ecrireA(cle(), texte);
}

verification::VerificationCode::Resultat DossierSigne::verifier() const {
  return verification::VerificationCode::verifier(dossier(), cle());
}

} // namespace keltrove::essais
