#include "Glissement.hpp"

@implementation Glissement
@end

namespace essais {

Glissement* glisser(NSArray* objets, CGFloat x, CGFloat y) {
  Glissement* glissement = [Glissement new];
  glissement.draggingPasteboard = [NSPasteboard pasteboardWithUniqueName];
  if (objets.count > 0) [glissement.draggingPasteboard writeObjects:objets];
  glissement.draggingLocation = [vueWeb() convertPoint:NSMakePoint(x, y) toView:nil];
  return glissement;
}

} // namespace essais
