// Champs : ce que les catégories ajoutent aux vues de GNUstep, hors d’elles, car son exécution n’a pas
// d’objets associés. Ils disparaissent avec la vue.
#pragma once

#import <AppKit/AppKit.h>

namespace essais {

struct Champs {
  BOOL couche = NO;
  CALayer* calque = nil;
  NSAppearance* apparence = nil;
  NSString* nom = nil;
  BOOL automatique = YES; // translatesAutoresizingMaskIntoConstraints
  CGFloat largeurVoulue = 0;
  NSMutableArray* contraintes = [NSMutableArray array]; // actives
};

Champs& champsDe(NSView* vue);

} // namespace essais
