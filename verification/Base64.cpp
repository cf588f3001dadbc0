#include "verification/Base64.hpp"

#include <algorithm>
#include <limits>

#include <openssl/evp.h>

namespace keltrove::verification {
namespace {

bool estDeLAlphabet(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' || c == '/';
}

std::size_t longueurDuBourrage(std::string_view texte) {
  return texte.ends_with("==") ? 2 : texte.ends_with('=') ? 1 : 0;
}

} // namespace

std::optional<std::string> decoderBase64(std::string_view texte) {
  if (texte.size() % 4 != 0 || texte.size() > std::numeric_limits<int>::max()) return std::nullopt;
  const auto bourrage = longueurDuBourrage(texte);
  // OpenSSL passe les blancs des bouts, que nous refusons.
  if (!std::ranges::all_of(texte.substr(0, texte.size() - bourrage), estDeLAlphabet)) return std::nullopt;
  std::string octets(texte.size() / 4 * 3, '\0');
  const auto decodes =
      EVP_DecodeBlock(reinterpret_cast<unsigned char*>(octets.data()),
                      reinterpret_cast<const unsigned char*>(texte.data()), static_cast<int>(texte.size()));
  if (decodes < 0) return std::nullopt;
  octets.resize(octets.size() - bourrage);
  return octets;
}

} // namespace keltrove::verification
