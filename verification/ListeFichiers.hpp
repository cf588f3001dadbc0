// ListeFichiers : tous les fichiers d’un dossier de code, tels qu’un inventaire doit les nommer.
//
// Seuls les noms sont lus : aucun fichier n’est ouvert, et rien n’attend. Utilisable depuis tout fil.
#pragma once

#include <cstddef>
#include <expected>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace keltrove::verification {

// Les noms que l’on n’inventorie ni ne parcourt, où qu’ils soient. Ce qu’ils contiennent n’est donc pas
// vérifié : les modules de Node, en particulier, ne le sont pas.
const std::set<std::string, std::less<>>& horsInventaire();

// Jusqu’où l’on suit un arbre, pour répondre toujours, et sans épuiser la mémoire. Le nombre de ses dossiers
// n’y est pour rien : seulement celui de ceux que des liens font revoir, qui peut doubler à chaque niveau.
struct Mesure {
  std::size_t niveaux = 10'000; // celui du dossier lui-même compris
  std::size_t revus = 100'000;
  std::size_t octets = 512UL * 1024 * 1024; // de tous les chemins : deux fois ce qu’un inventaire peut lister
};

enum class Refus {
  illisible, // un dossier ne s’ouvre pas, change pendant la lecture, ou un lien y ramène de l’intérieur
  demesure,  // l’une des bornes ci-dessus
};

// Les chemins relatifs de tout ce qui n’est pas un dossier, sans ordre. Les liens sont suivis, et leurs
// fichiers portent le nom du lien ; un lien brisé ne compte pas. Quelques dizaines de descripteurs suffisent,
// quelle que soit la profondeur.
std::expected<std::vector<std::string>, Refus> listerFichiers(const std::string& dossier,
                                                              const Mesure& mesure = {});

} // namespace keltrove::verification
