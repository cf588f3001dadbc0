// SockDiag : les prises TCP à l’écoute dans notre espace de réseau, demandées au noyau (sock_diag(7)).
//
// Il n’y parcourt que celles-là ; pour écrire /proc/net/tcp il parcourt toute la table des connexions, des
// dizaines de millisecondes sur une machine à grande mémoire. Ce qu’il en dit est la même chose.
#pragma once

#include "moteur/TablesDePrises.hpp"

#include <optional>
#include <vector>

namespace keltrove::moteur {

// Rien si ce noyau, ou ce bac à sable, ne répond pas à cette question entière. Sans attente ; utilisable
// depuis tout fil.
std::optional<std::vector<PriseALEcoute>> ecoutesParSockDiag();

} // namespace keltrove::moteur
