// Signature : le texte d’un fichier de signature.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace keltrove::verification {

// Les octets que ce texte porte en base64 strict, blancs et fins de ligne des deux bouts retirés ; rien s’il
// n’est pas en UTF-8 ou pas en base64. Leur nombre n’est pas jugé ici : ClePublique::aSigne refuse une
// signature qui n’a pas ses soixante-quatre octets. Sans état : utilisable depuis tout fil.
std::optional<std::string> lireSignature(std::string_view texte);

} // namespace keltrove::verification
