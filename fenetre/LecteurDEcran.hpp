// LecteurDEcran : le lecteur d’écran du bureau, et ce que la page doit en savoir.
#pragma once

#include <string>

namespace keltrove::fenetre {

struct LecteurDEcran {
  bool tourne = false;
  bool voitLaPage = true; // à travers la fenêtre : toutes les boîtes à outils ne savent pas la lui montrer
  bool operator==(const LecteurDEcran&) const = default;
};

// L’expression qui le dit à la page : elle le lit quand elle est prête, puis à chaque événement « lecteur ».
std::string annonceALaPage(const LecteurDEcran& lecteur);

} // namespace keltrove::fenetre
