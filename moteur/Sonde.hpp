// Sonde : deux questions posées au serveur par HTTP, sur 127.0.0.1 seulement.
//
// Là où le système dit à qui est le port, un autre compte de la machine n’y est jamais interrogé.
//
// Bloquantes : jamais sur le fil principal. Tout échec donne faux ou rien, sans en dire la raison ; aucune ne
// dépasse 3,0 secondes (cEstBienKeltrove) ou 4,0 secondes (sante).
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace keltrove::moteur {

struct Sante {
  std::string version; // « ? » si le serveur n’en donne pas
  int terminauxAuCarnet = 0;
  bool operator==(const Sante&) const = default;
};

// Vrai si la page servie à la racine de ce port est celle de ce produit (statut 200, UTF-8, et le nom de la
// balise du jeton), et si nul autre que nous ou l’administrateur ne la sert.
bool cEstBienKeltrove(int port);

// La version du serveur et la taille de sa liste de terminaux. Sans jeton, aucune requête n’est faite ; le
// jeton ne va jamais à un autre compte.
std::optional<Sante> sante(int port);

// Lecture de la réponse de la route de santé ; rien si ce n’est pas un objet JSON. Un membre absent ou d’une
// autre forme prend la valeur « ? » ou 0.
std::optional<Sante> lireSante(std::string_view corps);

} // namespace keltrove::moteur
