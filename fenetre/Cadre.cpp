#include "fenetre/Cadre.hpp"

#include "fenetre/Apparence.hpp"

namespace keltrove::fenetre {
namespace {

constexpr int coteMaximal = 32767; // limite de X11

bool seMontre(const Cadre& cadre) {
  return cadre.largeur >= Apparence::largeurMinimale && cadre.largeur <= coteMaximal &&
         cadre.hauteur >= Apparence::hauteurMinimale && cadre.hauteur <= coteMaximal;
}

} // namespace

Ouverture ouverture(const std::optional<Cadre>& retenu) {
  if (retenu && seMontre(*retenu)) return {.cadre = *retenu};
  return {.cadre = {.largeur = Apparence::largeur, .hauteur = Apparence::hauteur}, .auCentre = true};
}

} // namespace keltrove::fenetre
