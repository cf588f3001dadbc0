// SortieDErreur : les lignes que l’application adresse à qui l’a lancée depuis un terminal.
#pragma once

#include <string_view>

namespace keltrove::socle {

// Depuis tout fil. N’attend jamais : ce que le terminal retient (Ctrl+S), ou que le tube ne peut plus
// contenir, se perd, fût-ce au milieu d’une ligne. Au-delà de 512 octets, un autre fil peut s’y mêler.
void direSurLaSortieDErreur(std::string_view texte);

} // namespace keltrove::socle
