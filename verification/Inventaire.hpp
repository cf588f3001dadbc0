// Inventaire : la liste des fichiers d’un dossier et de leurs empreintes.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace keltrove::verification {

// De chaque chemin relatif (séparé par « / ») à l’empreinte SHA-256 du fichier, en hexadécimal minuscule.
using Inventaire = std::map<std::string, std::string>;

// La valeur de « fichiers » dans ce JSON (RFC 8259), dont les autres clés sont ignorées ; rien s’il n’a pas
// cette forme. Une marque d’ordre des octets en tête est admise ; d’une clé répétée, la dernière valeur
// compte ; rien ne peut suivre l’objet. Ni la forme des chemins ni celle des empreintes n’est jugée ici : ce
// qui n’existe pas sur le disque manquera. Sans état : utilisable depuis tout fil.
std::optional<Inventaire> lireInventaire(std::string_view octets);

} // namespace keltrove::verification
