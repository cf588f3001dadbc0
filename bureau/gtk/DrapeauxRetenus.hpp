// DrapeauxRetenus : ce que l’application retient pour toujours, dans « preferences » de son dossier de
// réglages.
#pragma once

#include <string>

namespace keltrove::bureau {

// Lève un drapeau. Un disque plein ne coûte que cet oubli.
void retenirUnDrapeau(const std::string& nom);

} // namespace keltrove::bureau
