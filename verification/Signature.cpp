#include "verification/Signature.hpp"

#include "socle/Texte.hpp"
#include "verification/Base64.hpp"

namespace keltrove::verification {

std::optional<std::string> lireSignature(std::string_view texte) {
  if (!socle::estUTF8(texte)) return std::nullopt;
  return decoderBase64(socle::rogner(texte));
}

} // namespace keltrove::verification
