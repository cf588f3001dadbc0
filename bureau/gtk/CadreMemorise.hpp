// CadreMemorise : la taille de la fenêtre, retenue d’une fois sur l’autre.
//
// Un fichier de clés par nom de cadre, dans $XDG_STATE_HOME/keltrove. La place à l’écran n’en fait pas partie
// : une fenêtre GTK ne choisit pas la sienne.
#pragma once

#include <optional>
#include <string>

namespace keltrove::bureau {

struct Cadre {
  int largeur = 0; // hors agrandissement
  int hauteur = 0;
  bool agrandie = false;
  bool operator==(const Cadre&) const = default;
};

// Rien si le fichier manque ou dit une taille qu’aucun écran ne peut montrer.
std::optional<Cadre> lireLeCadre(const std::string& nom);
void retenirLeCadre(const std::string& nom, const Cadre& cadre);

} // namespace keltrove::bureau
