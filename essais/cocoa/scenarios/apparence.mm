// Ce que la fenêtre montre : ses textes, ses couleurs, ses mesures.

#include "Scenario.hpp"

#include <cmath>

using namespace essais;

namespace {

struct Teinte {
  double rouge, vert, bleu, opacite = 1;
};
constexpr Teinte gris(double blanc, double opacite = 1) {
  return {blanc, blanc, blanc, opacite};
}

void exigerLaCouleur(NSColor* obtenue, const Teinte& voulue, const std::string& de) {
  NSColor* couleur = [obtenue colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
  const auto egales = [](double une, double autre) { return std::abs(une - autre) < 0.001; };
  exiger(couleur != nil && egales(couleur.redComponent, voulue.rouge) &&
             egales(couleur.greenComponent, voulue.vert) && egales(couleur.blueComponent, voulue.bleu) &&
             egales(couleur.alphaComponent, voulue.opacite),
         "la couleur de " + de + " : " + texte(couleur.description));
}

void exigerLeTexte(NSTextField* etiquette, double taille, bool gras, const Teinte& teinte,
                   const std::string& de) {
  exiger(etiquette.font.pointSize == taille, "la taille de " + de);
  const auto traits = [NSFontManager.sharedFontManager traitsOfFont:etiquette.font];
  exiger(((traits & NSBoldFontMask) != 0) == gras, "la graisse de " + de);
  exiger(etiquette.alignment == NSCenterTextAlignment, "le centrage de " + de);
  exigerLaCouleur(etiquette.textColor, teinte, de);
}

NSColor* fondDe(NSView* vue) {
  return (__bridge NSColor*)(void*)vue.layer.backgroundColor;
}

void exigerLesBoutons() {
  NSStackView* rangee = (NSStackView*)ecran().boutonReessayer.superview;
  exiger(rangee.orientation == NSUserInterfaceLayoutOrientationHorizontal && rangee.spacing == 12,
         "la rangée des boutons");
  NSArray* boutons = @[ ecran().boutonReessayer, ecran().boutonDetail ];
  exiger([rangee.arrangedSubviews isEqual:boutons], "« Réessayer » d’abord");
  exiger(ecran().boutonReessayer.bezelStyle == NSBezelStyleRounded &&
             ecran().boutonDetail.bezelStyle == NSBezelStyleInline,
         "leur bord");
}

void exigerLeDetail() {
  NSTextView* detail = ecran().detail;
  exiger([detail.font isEqual:[NSFont monospacedSystemFontOfSize:11 weight:NSFontWeightRegular]],
         "le détail en chasse fixe");
  exigerLaCouleur(detail.textColor, gris(0.8), "du détail");
  exigerLaCouleur(detail.backgroundColor, gris(0.1), "du fond du détail");
  exiger(detail.drawsBackground && !detail.isEditable, "un fond, et rien à écrire");
  exiger(NSEqualSizes(detail.textContainerInset, NSMakeSize(8, 8)), "ses marges");
  NSScrollView* cadre = ecran().cadreDetail;
  exiger(cadre.hasVerticalScroller && !cadre.drawsBackground && cadre.borderType == NSNoBorder, "son cadre");
  exiger(NSEqualSizes(cadre.fittingSize, NSMakeSize(560, 180)), "la taille du cadre");
}

} // namespace

SCENARIO(lEcranALeDessinConvenu) {
  attendreLEtape("echec-demarrage");
  faire([] {
    exigerLeTexte(ecran().titre, 22, true, gris(1), "du titre");
    exigerLeTexte(ecran().phrase, 13, false, gris(0.78), "de la phrase");
    exigerLeTexte(ecran().conseil, 13, true, {0.37, 0.62, 1}, "du conseil");
    exiger(ecran().phrase.preferredMaxLayoutWidth == 520 && ecran().conseil.preferredMaxLayoutWidth == 520,
           "la largeur où ils se replient");
    exiger(ecran().roue.style == NSProgressIndicatorStyleSpinning && ecran().roue.isIndeterminate, "la roue");
    NSStackView* pile = ecran().pile;
    exiger(pile.orientation == NSUserInterfaceLayoutOrientationVertical && pile.spacing == 14 &&
               pile.alignment == NSLayoutAttributeCenterX,
           "la pile");
    NSArray* rangees = @[
      ecran().roue, ecran().titre, ecran().phrase, ecran().conseil, ecran().boutonReessayer.superview,
      ecran().cadreDetail
    ];
    exiger([pile.arrangedSubviews isEqual:rangees], "son ordre");
    exigerLesBoutons();
    exigerLeDetail();
    exiger(ecran().wantsLayer && ecran().isFlipped, "l’écran");
  });
  quitter();
}

SCENARIO(leBandeauEtLeFondOntLeDessinConvenu) {
  attendreLEtape("echec-demarrage");
  faire([] {
    NSTextField* bandeau = controleur().bandeau;
    exigerLeTexte(bandeau, 12, false, gris(0.88), "du bandeau");
    exiger(bandeau.wantsLayer && bandeau.layer.cornerRadius == 8, "son arrondi");
    exigerLaCouleur(fondDe(bandeau), gris(0.16, 0.95), "du fond du bandeau");
    exiger(bandeau.isHidden, "caché");
    exigerLaCouleur(fenetre().backgroundColor, {236.0 / 255, 236.0 / 255, 239.0 / 255}, "de la fenêtre");
  });
  quitter();
}
