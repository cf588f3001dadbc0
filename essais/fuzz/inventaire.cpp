// Les octets d’un inventaire : chaque entrée lue est un texte en UTF-8 ; des blancs autour ne changent rien.
#include "verification/Inventaire.hpp"

#include "Exiger.hpp"
#include "socle/Texte.hpp"

#include <string>

using namespace keltrove::verification;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* octets, std::size_t nombre) {
  const auto texte = texteDe(octets, nombre);
  const auto inventaire = lireInventaire(texte);
  exiger(lireInventaire(std::string(texte) + " \n") == inventaire);
  if (!inventaire) return 0;
  for (const auto& [chemin, empreinte] : *inventaire) {
    exiger(keltrove::socle::estUTF8(chemin));
    exiger(keltrove::socle::estUTF8(empreinte));
  }
  exiger(!lireInventaire(std::string(texte) + "x"));
  return 0;
}
