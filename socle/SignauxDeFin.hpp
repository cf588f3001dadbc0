// SignauxDeFin : ceux par lesquels on demande à l’application de finir : l’arrêt de la session, Ctrl+C, un
// terminal qui se ferme.
#pragma once

#include <vector>

namespace keltrove::socle {

// Sans ceux reçus ignorés : qui nous a lancés par « nohup », ou à l’arrière-plan d’un script, veut que nous y
// survivions.
std::vector<int> signauxDeFin();

} // namespace keltrove::socle
