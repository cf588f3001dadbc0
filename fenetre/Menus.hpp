// Menus : la barre de menus, en français.
//
// Une table, que chaque bureau traduit dans ses propres menus et raccourcis sans rien y ajouter. Elle ne
// change plus une fois posée. Fil principal seulement.
#pragma once

#include "fenetre/ArticlesDeMenu.hpp"
#include "fenetre/VueFenetre.hpp"

#include <string>
#include <vector>

namespace keltrove::fenetre::Menus {

// Les menus, de gauche à droite.
const std::vector<Menu>& barre();

// Celui de l’article qui mène à cette action, vide si aucun n’y mène.
std::string titreDe(Action action);

// Pose la barre sur la vue, une fois. « Recharger la page » ne recharge rien d’elle-même : la vue le dit à
// son observateur.
void installer(VueFenetre& vue);

} // namespace keltrove::fenetre::Menus
