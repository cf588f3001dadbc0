// Le texte d’un fichier de clé : une clé lue ne tient ni à ses lignes vides ni à son encadrement.
#include "Exiger.hpp"
#include "verification/ClePublique.hpp"

#include <string>

using namespace keltrove::verification;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* octets, std::size_t nombre) {
  const auto texte = texteDe(octets, nombre);
  const auto cle = lireClePublique(texte);
  const auto encadree =
      lireClePublique("-----BEGIN PUBLIC KEY-----\n\n" + std::string(texte) + "\n-----END PUBLIC KEY-----");
  // Sauf si le texte commence ou finit par de quoi changer la ligne voisine.
  if (cle && !texte.ends_with('\r')) exiger(encadree.has_value());
  // Une clé d’ordre faible est une clé : tout ce que l’on demande à celle-ci est une réponse.
  if (cle) static_cast<void>(cle->aSigne(texte, std::string(64, '\0')));
  return 0;
}
