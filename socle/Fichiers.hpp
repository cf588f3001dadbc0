// Fichiers : chemins sous forme de texte, lecture bornée, écriture atomique.
//
// Aucune de ces opérations n’attend : un tube nommé, un dossier, un périphérique ou un fichier trop grand à
// la place de celui qui est attendu donne un échec, jamais un blocage. La raison d’un échec ne se sait pas :
// ici, elle ne change jamais ce que l’appelant fait. Les liens sont suivis. Utilisables depuis tout fil.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace keltrove::socle {

// Exactement un « / » entre les deux parties ; `nom` peut compter plusieurs composants.
std::string ajouterComposant(std::string_view dossier, std::string_view nom);

// Le chemin sans son dernier composant : « / » pour une entrée de la racine, vide pour un nom seul.
std::string dossierDe(std::string_view chemin);

// Faux aussi de ce qu’un dossier interdit cache.
bool existe(const std::string& chemin);

// Vrai pour une entrée qui n’est pas un dossier et que l’utilisateur courant a le droit d’exécuter.
bool estExecutable(const std::string& chemin);

// Le contenu d’un fichier ordinaire d’au plus `maximum` octets ; rien dans tous les autres cas.
std::optional<std::string> lireFichier(const std::string& chemin, std::size_t maximum);

// Remplace le fichier d’un coup (fichier voisin puis renommage), lisible par son seul propriétaire. Un lien
// de ce nom est remplacé, non suivi. Crée les dossiers parents. Faux en cas d’échec : l’ancien contenu reste
// et aucun fichier voisin ne traîne. Rien ne force le disque : une coupure de courant peut perdre l’écriture.
bool ecrireFichier(const std::string& chemin, std::string_view contenu);

} // namespace keltrove::socle
