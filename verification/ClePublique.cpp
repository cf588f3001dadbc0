#include "verification/ClePublique.hpp"

#include "socle/Fichiers.hpp"
#include "socle/Texte.hpp"
#include "verification/Base64.hpp"

#include <openssl/evp.h>

namespace keltrove::verification {
namespace {

constexpr std::size_t fichierMaximal = 1024UL * 1024;
constexpr std::string_view encadrement = "-----";

struct RendreContexte {
  void operator()(EVP_MD_CTX* contexte) const { EVP_MD_CTX_free(contexte); }
};

const unsigned char* octetsDe(std::string_view texte) {
  return reinterpret_cast<const unsigned char*>(texte.data());
}

// Un retour chariot et son saut de ligne ne font qu’un caractère, qui ne sépare rien.
std::size_t finDeLigne(std::string_view texte) {
  for (auto fin = texte.find('\n'); fin != std::string_view::npos; fin = texte.find('\n', fin + 1))
    if (fin == 0 || texte[fin - 1] != '\r') return fin;
  return texte.size();
}

bool estUnEncadrement(std::string_view ligne) {
  return socle::premiersCaracteres(ligne, encadrement.size()) == encadrement;
}

} // namespace

void ClePublique::Rendre::operator()(evp_pkey_st* cle) const {
  EVP_PKEY_free(cle);
}

std::optional<ClePublique> ClePublique::depuis(std::string_view octets) {
  ClePublique cle;
  cle.cle_.reset(EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, octetsDe(octets), octets.size()));
  return cle.cle_ ? std::optional(std::move(cle)) : std::nullopt;
}

bool ClePublique::aSigne(std::string_view message, std::string_view signature) const {
  const std::unique_ptr<EVP_MD_CTX, RendreContexte> contexte(EVP_MD_CTX_new());
  return contexte && EVP_DigestVerifyInit(contexte.get(), nullptr, nullptr, nullptr, cle_.get()) == 1 &&
         EVP_DigestVerify(contexte.get(), octetsDe(signature), signature.size(), octetsDe(message),
                          message.size()) == 1;
}

std::optional<ClePublique> lireClePublique(std::string_view texte) {
  if (!socle::estUTF8(texte)) return std::nullopt;
  std::string base64;
  while (!texte.empty()) {
    const auto fin = finDeLigne(texte);
    const auto ligne = texte.substr(0, fin);
    if (!estUnEncadrement(ligne)) base64 += ligne;
    texte.remove_prefix(fin < texte.size() ? fin + 1 : fin);
  }
  const auto octets = decoderBase64(base64);
  if (!octets || octets->size() < ClePublique::longueur) return std::nullopt;
  return ClePublique::depuis(std::string_view(*octets).substr(octets->size() - ClePublique::longueur));
}

std::optional<ClePublique> chargerClePublique(const std::string& chemin) {
  const auto texte = socle::lireFichier(chemin, fichierMaximal);
  return texte ? lireClePublique(*texte) : std::nullopt;
}

} // namespace keltrove::verification
