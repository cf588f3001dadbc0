// ArbreProcessus : les descendants d’un processus et les ports TCP sur lesquels chacun écoute.
//
// Aucune erreur n’est signalée : ce que le système ne dit pas donne une liste vide. Utilisable depuis tout
// fil.
#pragma once

#include <cstdint>
#include <vector>

#include <sys/types.h>

namespace keltrove::moteur {

// En profondeur d’abord : chaque enfant, dans l’ordre de création, suivi aussitôt de sa descendance.
// Une profondeur nulle ou négative donne une liste vide.
std::vector<pid_t> descendants(pid_t pid, int profondeur);

// Les ports distincts, en IPv4 comme en IPv6, dans l’ordre des descripteurs du processus.
std::vector<int> portsEcoutesPar(pid_t pid);

// Un processus désigné sans confusion possible, même si son numéro sert ensuite à un autre.
struct Identite {
  pid_t pid = -1;
  std::uint64_t naissance = 0; // unité propre au système ; ne sert qu’à la comparaison
};
Identite identifier(pid_t pid);

// Vrai tant que ce processus-là existe et n’est pas un zombie.
bool enVie(const Identite& identite);

} // namespace keltrove::moteur
