// Cadre : la taille de la fenêtre, que le système retient d’une fois sur l’autre. Sans état.
#pragma once

#include <optional>

namespace keltrove::fenetre {

struct Cadre {
  int largeur = 0; // en points, hors agrandissement
  int hauteur = 0;
  bool agrandie = false;
  bool operator==(const Cadre&) const = default;
};

// Comment la fenêtre s’ouvre.
struct Ouverture {
  Cadre cadre;
  bool auCentre = false; // de l’écran, là où le système laisse une fenêtre choisir sa place
  bool operator==(const Ouverture&) const = default;
};

// Comme on l’a laissée ; la taille d’origine, au centre, si rien n’est retenu ou rien de montrable : plus
// petit que le minimum de la fenêtre, ou plus grand que ce qu’un système de fenêtres sait tenir.
Ouverture ouverture(const std::optional<Cadre>& retenu);

} // namespace keltrove::fenetre
