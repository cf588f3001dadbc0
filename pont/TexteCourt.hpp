// texteCourt : ce que l’application peut montrer d’un texte venu de la page.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace keltrove::pont {

// La valeur rognée, coupée à `maximum` caractères perçus dont le dernier est alors « … » ; une valeur coupée
// ne l’est donc jamais au milieu d’un emoji. Le texte par défaut, tel quel, si elle manque ou ne contient que
// des blancs. En UTF-8. Sans état : utilisable depuis tout fil.
std::string texteCourt(const std::optional<std::string>& valeur, const std::string& parDefaut,
                       std::size_t maximum);

} // namespace keltrove::pont
