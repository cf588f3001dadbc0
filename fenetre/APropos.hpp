// APropos : ce que l’application dit d’elle-même, et le journal qu’un utilisateur peut envoyer.
//
// Les textes de la boîte « À propos » ; chaque bureau dessine la sienne. Utilisable depuis tout fil.
#pragma once

#include "socle/Journal.hpp"

#include <optional>
#include <string>
#include <vector>

namespace keltrove::fenetre::APropos {

inline constexpr const char* titre = "À propos de Keltrove";
inline constexpr const char* nom = "Keltrove";
inline constexpr const char* version = "Version " KELTROVE_VERSION;
inline constexpr const char* objet = "Une fenêtre native pour votre page de terminaux.";
inline constexpr const char* licence =
    "Logiciel libre, sous licence MIT : vous pouvez l’utiliser, le modifier et "
    "le partager, sans garantie d’aucune sorte.";

// Les boutons. Le journal commence caché ; copié, le bouton le dit jusqu’à ce que la fenêtre se rouvre.
inline constexpr const char* fermer = "Fermer";
inline constexpr const char* copierLeJournal = "Copier le journal";
inline constexpr const char* journalCopie = "Journal copié";
constexpr const char* titreDuBoutonDuJournal(bool montre) {
  return montre ? "Cacher le journal" : "Voir le journal";
}

// La version, le système (une ligne que le bureau donne), puis une étape par ligne : les secondes depuis la
// première, son nom, ses détails. Le jeton d’accès n’y paraît jamais, fût-il dans un détail. En UTF-8.
std::string journal(const std::string& systeme, const std::vector<socle::Journal::Details>& etapes,
                    const std::optional<std::string>& jeton);
// Celui de ce lancement, jusqu’ici.
std::string journal(const std::string& systeme);

} // namespace keltrove::fenetre::APropos
