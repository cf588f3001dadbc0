// ArbreProcessus : les descendants d’un processus et les ports TCP sur lesquels chacun écoute.
//
// Une photographie : le temps de la regarder, un processus a pu naître, finir, ou céder son numéro. Aucune
// erreur n’est signalée : ce que le système ne dit pas, ou n’a pas le droit de dire, donne une liste vide.
// Utilisable depuis tout fil.
#pragma once

#include <cstdint>
#include <vector>

#include <sys/types.h>

namespace keltrove::moteur {

// En profondeur d’abord : chaque enfant, dans l’ordre de création, suivi aussitôt de sa descendance. Une
// profondeur nulle ou négative donne une liste vide.
std::vector<pid_t> descendants(pid_t pid, int profondeur);

// Les ports distincts, en IPv4 comme en IPv6, dans l’ordre des descripteurs du processus. Ses enfants
// n’y sont pour rien.
std::vector<int> portsEcoutesPar(pid_t pid);

// Un processus désigné sans confusion possible, même si son numéro sert ensuite à un autre. À prendre avant
// de lui demander de finir.
struct Identite {
  pid_t pid = -1;
  std::uint64_t naissance = 0; // unité propre au système ; ne sert qu’à la comparaison
};
// Un processus déjà fini garde la naissance 0, et enVie() dira qu’il ne vit plus.
Identite identifier(pid_t pid);

// Vrai tant que ce processus-là existe et n’est pas un zombie. Dans le doute (le système ne le montre plus,
// faute de descripteur), vrai : mieux vaut attendre encore que conclure à sa fin.
bool enVie(const Identite& identite);

} // namespace keltrove::moteur
