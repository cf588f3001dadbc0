// Retenu : ce que l’application retient d’une fois sur l’autre, en fichiers de clés. Un disque plein ne coûte
// que cet oubli, et rien ne le signale. Quelques lectures et écritures brèves ; fil principal seulement.
#pragma once

#include "fenetre/Cadre.hpp"

#include <optional>
#include <string>

namespace keltrove::bureau {

// Un cadre par nom, dans $XDG_STATE_HOME/keltrove ; tel qu’écrit, même immontrable. Rien si le fichier manque
// ou ne se lit pas. La place à l’écran n’en fait pas partie : une fenêtre GTK ne choisit pas la sienne.
std::optional<fenetre::Cadre> lireLeCadre(const std::string& nom);
// Remplace ce qui l’était sous ce nom.
void retenirLeCadre(const std::string& nom, const fenetre::Cadre& cadre);

// Lève un drapeau, pour toujours, dans $XDG_CONFIG_HOME/keltrove/preferences.
void retenirUnDrapeau(const std::string& nom);

} // namespace keltrove::bureau
