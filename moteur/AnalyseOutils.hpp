// AnalyseOutils : lecture de ce qu’impriment les outils système qui listent processus et ports.
//
// Fonctions pures, les mêmes sur tous les systèmes. Une ligne qui ne se lit pas est ignorée ; une sortie qui
// n’est pas en UTF-8 ne donne rien.
#pragma once

#include "moteur/TablesDePrises.hpp"

#include <optional>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace keltrove::moteur {

// La sortie de « pgrep -P <pid> » : un numéro de processus par ligne. L’ordre des lignes est gardé.
std::vector<pid_t> lirePgrep(std::string_view sortie);

// La sortie de « lsof -nP -a -p <pid> -iTCP -sTCP:LISTEN » : les ports distincts, dans l’ordre
// d’apparition. La première ligne, celle des titres, ne compte pas ; le port d’une ligne suit le dernier
// « : » de son adresse.
std::vector<int> lireLsof(std::string_view sortie);

// La même sans « -p <pid> », pour un compte : ses prises à l’écoute, chacune une fois, à qui que ce soit que
// son processus l’ait aussi confiée. `compte` est celui dont on a demandé les prises.
std::vector<PriseALEcoute> lirePrisesDeLsof(std::string_view sortie, uid_t compte);

// La sortie de « netstat -an -p tcp » de macOS : l’adresse et le port de toutes les prises à l’écoute, sans
// leur compte, qu’elle tait. Rien si ce n’est pas la sienne.
std::optional<std::vector<PriseALEcoute>> lireNetstat(std::string_view sortie);

} // namespace keltrove::moteur
