// Glissement : ce qu’AppKit remet à une vue que l’on survole.
#pragma once

#include "Scenario.hpp"

@interface Glissement : NSObject <NSDraggingInfo>
@property(nonatomic, strong) NSPasteboard* draggingPasteboard;
@property(nonatomic) NSPoint draggingLocation;
@end

namespace essais {

// À tant de points du coin haut gauche de la page.
Glissement* glisser(NSArray* objets, CGFloat x, CGFloat y);

} // namespace essais
