// OrdreCanonique : l’ordre des points de code Unicode après composition canonique (NFC, UAX 15).
//
// C’est lui qui dit quel défaut est le premier. Ni celui des unités UTF-16, ni celui d’une langue. Deux
// textes canoniquement égaux se départagent par leurs octets ; ce qui n’est pas en UTF-8 se range selon ses
// octets. Sans état : utilisable depuis tout fil.
#pragma once

#include <string>
#include <vector>

namespace keltrove::verification {

// Sur place.
void trierSelonLOrdreCanonique(std::vector<std::string>& textes);

// Le premier d’une liste qui n’est pas vide.
const std::string& premierSelonLOrdreCanonique(const std::vector<std::string>& textes);

} // namespace keltrove::verification
