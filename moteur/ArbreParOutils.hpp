// ArbreParOutils : les descendants d’un processus et ses ports, tels que deux outils du système les
// impriment.
//
// Sert là où ces outils sont partout et où rien d’autre ne se lit sans privilège ni structure privée. Un
// outil qui ne se lance pas donne une liste vide. Bloquante, le temps de ses exécutions ; utilisable depuis
// tout fil.
#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace keltrove::moteur {

// `pgrep` : son chemin absolu. Une exécution par processus rencontré, aucune si la profondeur n’est pas
// positive.
std::vector<pid_t> descendantsSelonPgrep(const std::string& pgrep, pid_t pid, int profondeur);

// `lsof` : son chemin absolu.
std::vector<int> portsSelonLsof(const std::string& lsof, pid_t pid);

} // namespace keltrove::moteur
