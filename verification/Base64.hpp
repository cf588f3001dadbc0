// Base64 : le décodage strict de la RFC 4648, section 4.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace keltrove::verification {

// Les octets, ou rien : seuls l’alphabet ordinaire et son bourrage sont admis, ni blanc, ni fin de
// ligne, ni l’alphabet des adresses (« - » et « _ »). Un texte vide donne zéro octet. Sans état :
// utilisable depuis tout fil.
std::optional<std::string> decoderBase64(std::string_view texte);

} // namespace keltrove::verification
