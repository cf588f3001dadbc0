// Identifiant : un nom que personne d’autre ne porte.
#pragma once

#include <string>

namespace keltrove::socle {

// Un UUID de version 4 (RFC 4122), en trente-six caractères majuscules. Utilisable depuis tout fil.
std::string identifiantAuHasard();

} // namespace keltrove::socle
