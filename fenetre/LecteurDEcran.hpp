// LecteurDEcran : le lecteur d’écran du bureau, et ce que la page doit en savoir. Sans état :
// utilisable depuis tout fil.
#pragma once

#include "pont/MessageDeLaPage.hpp"

#include <optional>
#include <string>

namespace keltrove::fenetre {

struct LecteurDEcran {
  bool tourne = false;
  bool voitLaPage = true; // à travers la fenêtre : toutes les boîtes à outils ne savent pas la lui montrer
  bool operator==(const LecteurDEcran&) const = default;
};

// L’expression qui le dit à la page : elle le lit quand elle est prête, puis à chaque événement « lecteur ».
std::string annonceALaPage(const LecteurDEcran& lecteur);

// Le canal des textes que la page veut faire lire aussitôt.
inline constexpr const char* canalDuLecteur = "keltroveLecteur";

// Le texte à lire, d’un message de ce canal, ramené à quatre mille caractères (une page de terminal,
// largement) : un lecteur ne se laisse pas couper. Rien si le message n’est pas un texte, ou s’il est vide.
std::optional<std::string> texteALire(const pont::MessageDeLaPage& message);

} // namespace keltrove::fenetre
