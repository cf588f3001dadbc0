// MessageDeLaPage : un message de la page, du JSON que la vue web en fait à un objet.
#pragma once

#include <optional>
#include <string>

#include <nlohmann/json_fwd.hpp>

namespace keltrove::pont {

// L’objet, ou une valeur nulle si le corps n’en est pas un ou manque. Une moitié de caractère, qu’une page
// laisse en coupant un texte au milieu d’un emoji, devient U+FFFD. Sans état : utilisable depuis tout fil.
nlohmann::json lireLeMessage(const std::optional<std::string>& corps);

} // namespace keltrove::pont
