// MenusCocoa : la table des menus, traduite en menus d’AppKit.
#pragma once

#include "fenetre/ArticlesDeMenu.hpp"

#include <vector>

#import <Foundation/Foundation.h>

namespace keltrove::bureau {

// Une fois. `cible` reçoit les actions qui s’adressent à la fenêtre de keltrove ; les autres vont au premier
// répondeur, qui les valide.
void poserLesMenus(const std::vector<fenetre::Menus::Menu>& menus, id cible);

} // namespace keltrove::bureau
