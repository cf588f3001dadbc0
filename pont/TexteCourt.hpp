// texteCourt : ce que l’application peut montrer d’un texte venu de la page.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace keltrove::pont {

// La valeur rognée, coupée à `maximum` caractères perçus dont le dernier est alors « … ». Le texte par défaut
// si elle manque ou ne contient que des blancs. Sans état : utilisable depuis tout fil.
std::string texteCourt(const std::optional<std::string>& valeur, const std::string& parDefaut,
                       std::size_t maximum);

} // namespace keltrove::pont
