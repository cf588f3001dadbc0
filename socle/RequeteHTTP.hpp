// RequeteHTTP : une requête GET bloquante, bornée en temps et en mémoire.
//
// Aucun mandataire n’est jamais utilisé, quoi qu’en dise l’environnement ; rien n’est gardé sur le disque, ni
// d’une requête à l’autre. HTTP et HTTPS seulement. Bloque le fil appelant : jamais le fil principal.
// Utilisable depuis plusieurs fils à la fois.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace keltrove::socle {

enum class Redirections {
  suivies,          // où qu’elles mènent, en HTTP ou en HTTPS, vingt au plus
  memeOrigineSeule, // une redirection vers une autre origine est rendue telle quelle, sans être suivie
};

// Les deux durées sont à donner : leur zéro par défaut ne laisse le temps de rien.
struct RequeteHTTP {
  std::string url;
  std::vector<std::string> entetes;                  // « Nom: valeur »
  double inactiviteMaximale = 0;                     // secondes sans recevoir un seul octet
  double dureeMaximale = 0;                          // secondes pour le tout, redirections comprises
  std::size_t octetsMaximum = std::size_t{16} << 20; // corps et en-têtes d’une réponse
  Redirections redirections = Redirections::suivies;
};

// Quel que soit le statut : un 404 est une réponse.
struct ReponseHTTP {
  long statut = 0;
  std::string corps;
};

// Rien si la réponse n’est pas venue entière dans les limites, pour quelque raison que ce soit : adresse
// illisible, connexion refusée, corps coupé ou trop grand, délai passé, ronde de redirections.
std::optional<ReponseHTTP> obtenir(const RequeteHTTP& requete);

} // namespace keltrove::socle
