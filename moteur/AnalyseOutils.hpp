// AnalyseOutils : lecture de ce qu’impriment les outils système qui listent processus et ports.
//
// Fonctions pures, les mêmes sur tous les systèmes. Une ligne qui ne se lit pas est ignorée ; une sortie qui
// n’est pas en UTF-8 ne donne rien.
#pragma once

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

} // namespace keltrove::moteur
