// Identifiant : un nom que personne d’autre ne porte.
#pragma once

#include <string>

namespace keltrove::socle {

// Un UUID de version 4 (RFC 4122), en trente-six caractères majuscules. Il sert à nommer, non à prouver quoi
// que ce soit : ce n’est pas un secret. Utilisable depuis tout fil.
std::string identifiantAuHasard();

} // namespace keltrove::socle
