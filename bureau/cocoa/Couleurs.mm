#include "bureau/cocoa/Couleurs.hpp"

namespace keltrove::bureau {

namespace Apparence = fenetre::Apparence;

NSColor* enNSColor(const Apparence::Couleur& couleur) {
  const auto [rouge, vert, bleu, opacite] = couleur;
  if (rouge == vert && vert == bleu) return [NSColor colorWithWhite:rouge alpha:opacite];
  return [NSColor colorWithCalibratedRed:rouge green:vert blue:bleu alpha:opacite];
}

NSColor* fondDeLaFenetre() {
  static NSColor* const fond = [NSColor
        colorWithName:@"fond-keltrove"
      dynamicProvider:^NSColor*(NSAppearance* apparence) {
        NSString* meilleure =
            [apparence bestMatchFromAppearancesWithNames:@[ NSAppearanceNameDarkAqua, NSAppearanceNameAqua ]];
        if ([meilleure isEqualToString:NSAppearanceNameDarkAqua]) return enNSColor(Apparence::fondSombre);
        const auto& clair = Apparence::fondClair;
        return [NSColor colorWithSRGBRed:clair.rouge green:clair.vert blue:clair.bleu alpha:clair.opacite];
      }];
  return fond;
}

} // namespace keltrove::bureau
