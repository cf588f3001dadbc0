// Les propriétés des vues que GNUstep 0.29 n’a pas.

#include "Champs.hpp"

#include <map>

#import <objc/runtime.h>

namespace essais {
namespace {

std::map<const void*, Champs>& tous() {
  static auto* const tous = new std::map<const void*, Champs>; // jamais détruits : des vues survivent à main
  return *tous;
}

void (*deallocDOrigine)(__unsafe_unretained id, SEL);
void dealloc(__unsafe_unretained id vue, SEL commande) {
  tous().erase((__bridge const void*)vue);
  deallocDOrigine(vue, commande);
}

} // namespace

Champs& champsDe(NSView* vue) {
  return tous()[(__bridge const void*)vue];
}

} // namespace essais

using essais::champsDe;

@interface EssaiOubliDesVues : NSObject
@end
@implementation EssaiOubliDesVues
+ (void)load {
  @autoreleasepool {
    const SEL selecteur = NSSelectorFromString(@"dealloc");
    Method methode = class_getInstanceMethod([NSView class], selecteur);
    essais::deallocDOrigine =
        (decltype(essais::deallocDOrigine))method_setImplementation(methode, (IMP)essais::dealloc);
  }
}
@end

@implementation CALayer
@end

@implementation NSView (Manquant)
- (BOOL)wantsLayer {
  return champsDe(self).couche;
}
- (void)setWantsLayer:(BOOL)oui {
  champsDe(self).couche = oui;
  if (oui && champsDe(self).calque == nil) champsDe(self).calque = [CALayer new];
}
- (CALayer*)layer {
  return champsDe(self).calque;
}
- (void)setLayer:(CALayer*)calque {
  champsDe(self).calque = calque;
}
- (NSAppearance*)appearance {
  return champsDe(self).apparence;
}
- (void)setAppearance:(NSAppearance*)apparence {
  champsDe(self).apparence = apparence;
}
- (NSAppearance*)effectiveAppearance {
  for (NSView* vue = self; vue; vue = vue.superview)
    if (champsDe(vue).apparence) return champsDe(vue).apparence;
  return [NSAppearance appearanceNamed:NSAppearanceNameAqua];
}
- (NSString*)accessibilityLabel {
  return champsDe(self).nom;
}
- (void)setAccessibilityLabel:(NSString*)nom {
  champsDe(self).nom = nom;
}
- (BOOL)translatesAutoresizingMaskIntoConstraints {
  return champsDe(self).automatique;
}
- (void)setTranslatesAutoresizingMaskIntoConstraints:(BOOL)oui {
  champsDe(self).automatique = oui;
}
@end
