// Echange : deux dossiers prennent la place l’un de l’autre d’un seul coup.
#pragma once

#include <string>

namespace keltrove::essais {

void echanger(const std::string& un, const std::string& autre);

} // namespace keltrove::essais
