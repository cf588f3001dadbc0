// Le texte d’un fichier de signature : ce qui se lit ne change ni avec des blancs autour, ni relu.
#include "verification/Signature.hpp"

#include "Exiger.hpp"

#include <string>

using namespace keltrove::verification;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* octets, std::size_t nombre) {
  const auto texte = texteDe(octets, nombre);
  const auto signature = lireSignature(texte);
  exiger(lireSignature("\n \t" + std::string(texte) + "\r\n") == signature);
  if (signature) exiger(signature->size() <= nombre / 4 * 3);
  return 0;
}
