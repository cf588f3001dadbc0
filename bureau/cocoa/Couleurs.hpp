// Couleurs : celles du comportement, pour AppKit.
#pragma once

#include "fenetre/Apparence.hpp"

#import <AppKit/AppKit.h>

namespace keltrove::bureau {

NSColor* enNSColor(const fenetre::Apparence::Couleur& couleur);

// Suit l’apparence de ce qui se peint avec elle.
NSColor* fondDeLaFenetre();

} // namespace keltrove::bureau
