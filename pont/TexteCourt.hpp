// texteCourt : ce qu’une notification peut montrer d’une valeur venue de la page.
#pragma once

#include <cstddef>
#include <string>

#include <nlohmann/json_fwd.hpp>

namespace keltrove::pont {

// La valeur rognée, coupée à `maximum` caractères perçus dont le dernier est alors « … ». Le texte par défaut
// si la valeur n’est pas un texte ou ne contient que des blancs. Sans état : utilisable depuis tout fil.
std::string texteCourt(const nlohmann::json& valeur, const std::string& parDefaut, std::size_t maximum);

} // namespace keltrove::pont
