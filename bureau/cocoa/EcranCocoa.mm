#include "bureau/cocoa/EcranCocoa.hpp"

#include "bureau/cocoa/Couleurs.hpp"
#include "bureau/cocoa/Textes.hpp"
#include "fenetre/Apparence.hpp"

using namespace keltrove;
using bureau::enNSColor;
using bureau::enNSString;
using fenetre::EtatEcran;

namespace Apparence = fenetre::Apparence;
namespace Ecran = fenetre::Apparence::Ecran;

namespace {

NSFontWeight graisse(int valeur) {
  if (valeur >= Apparence::Graisse::demiGrasse) return NSFontWeightSemibold;
  return valeur >= Apparence::Graisse::moyenne ? NSFontWeightMedium : NSFontWeightRegular;
}

} // namespace

@implementation EcranAttente {
  NSStackView* _boutons;
}

- (instancetype)initWithFrame:(NSRect)cadre {
  if ((self = [super initWithFrame:cadre])) [self construire];
  return self;
}

- (instancetype)initWithCoder:(NSCoder*)archive {
  if ((self = [super initWithCoder:archive])) [self construire];
  return self;
}

- (void)construire {
  self.wantsLayer = YES;
  [self construireLesTextes];
  [self construireLesBoutons];
  [self construireLeDetail];
  _roue = [[NSProgressIndicator alloc] initWithFrame:NSZeroRect];
  _roue.style = NSProgressIndicatorStyleSpinning;
  _roue.controlSize = NSControlSizeRegular;
  _roue.indeterminate = YES;
  [self empiler];
}

- (void)construireLesTextes {
  _titre = [NSTextField labelWithString:@""];
  _titre.font = [NSFont systemFontOfSize:Ecran::tailleDuTitre weight:graisse(Ecran::graisseDuTitre)];
  _titre.textColor = enNSColor(Ecran::titre);
  _titre.alignment = NSTextAlignmentCenter;
  _phrase = [self texteReplie:Ecran::phrase graisse:NSFontWeightRegular];
  _conseil = [self texteReplie:Ecran::conseil graisse:graisse(Ecran::graisseDuConseil)];
}

- (NSTextField*)texteReplie:(const Apparence::Couleur&)couleur graisse:(NSFontWeight)graisse {
  NSTextField* texte = [NSTextField wrappingLabelWithString:@""];
  texte.font = [NSFont systemFontOfSize:Ecran::tailleDuTexte weight:graisse];
  texte.textColor = enNSColor(couleur);
  texte.alignment = NSTextAlignmentCenter;
  texte.preferredMaxLayoutWidth = Ecran::largeurDuTexte;
  return texte;
}

- (void)construireLesBoutons {
  _boutonReessayer = [NSButton buttonWithTitle:@"" target:self action:@selector(reessayer)];
  _boutonReessayer.bezelStyle = NSBezelStyleRounded;
  _boutonReessayer.keyEquivalent = @"\r";
  _boutonDetail = [NSButton buttonWithTitle:@"" target:self action:@selector(basculerDetail)];
  _boutonDetail.bezelStyle = NSBezelStyleInline;
  _boutons = [NSStackView stackViewWithViews:@[ _boutonReessayer, _boutonDetail ]];
  _boutons.orientation = NSUserInterfaceLayoutOrientationHorizontal;
  _boutons.spacing = Ecran::entreLesBoutons;
}

- (void)construireLeDetail {
  _detail =
      [[NSTextView alloc] initWithFrame:NSMakeRect(0, 0, Ecran::largeurDuDetail, Ecran::hauteurDuDetail)];
  _detail.editable = NO;
  _detail.drawsBackground = YES;
  _detail.backgroundColor = enNSColor(Ecran::fondDuDetail);
  _detail.textColor = enNSColor(Ecran::detail);
  _detail.font = [NSFont monospacedSystemFontOfSize:Ecran::tailleDuDetail weight:NSFontWeightRegular];
  _detail.textContainerInset = NSMakeSize(Ecran::margeDuDetail, Ecran::margeDuDetail);
  _detail.autoresizingMask = NSViewWidthSizable;
  _detail.verticallyResizable = YES;
  _detail.accessibilityLabel = enNSString(Apparence::Noms::detail);
  _cadreDetail = [[NSScrollView alloc] initWithFrame:_detail.frame];
  _cadreDetail.documentView = _detail;
  _cadreDetail.hasVerticalScroller = YES;
  _cadreDetail.drawsBackground = NO;
  _cadreDetail.borderType = NSNoBorder;
  _cadreDetail.hidden = YES;
  [NSLayoutConstraint activateConstraints:@[
    [_cadreDetail.heightAnchor constraintEqualToConstant:Ecran::hauteurDuDetail],
    [_cadreDetail.widthAnchor constraintEqualToConstant:Ecran::largeurDuDetail],
  ]];
}

- (void)empiler {
  _pile = [NSStackView stackViewWithViews:@[ _roue, _titre, _phrase, _conseil, _boutons, _cadreDetail ]];
  _pile.orientation = NSUserInterfaceLayoutOrientationVertical;
  _pile.alignment = NSLayoutAttributeCenterX;
  _pile.spacing = Ecran::espacement;
  _pile.translatesAutoresizingMaskIntoConstraints = NO;
  [self addSubview:_pile];
  [NSLayoutConstraint activateConstraints:@[
    [_pile.centerXAnchor constraintEqualToAnchor:self.centerXAnchor],
    [_pile.centerYAnchor constraintEqualToAnchor:self.centerYAnchor],
    [_pile.widthAnchor constraintLessThanOrEqualToAnchor:self.widthAnchor constant:-Ecran::margesLaterales],
  ]];
}

- (BOOL)isFlipped {
  return YES;
}

// Il prend le clavier à la page qu’il couvre.
- (BOOL)acceptsFirstResponder {
  return YES;
}

- (void)drawRect:(NSRect)aPeindre {
  NSGraphicsContext* contexte = NSGraphicsContext.currentContext;
  [enNSColor(Apparence::fondSombre) set];
  NSRectFillUsingOperation(aPeindre,
                           contexte ? contexte.compositingOperation : NSCompositingOperationSourceOver);
}

- (void)reessayer {
  if (self.quandOnReessaie) self.quandOnReessaie();
}

- (void)basculerDetail {
  if (self.quandOnBasculeLeDetail) self.quandOnBasculeLeDetail();
}

- (void)dessiner:(const EtatEcran&)etat {
  [self ecrire:etat.titre dans:_titre];
  [self ecrire:etat.phrase dans:_phrase];
  [self ecrire:etat.conseil dans:_conseil];
  _roue.hidden = !etat.roue;
  if (etat.roue)
    [_roue startAnimation:nil];
  else
    [_roue stopAnimation:nil];
  _boutonReessayer.hidden = !etat.boutonReessayer;
  _boutonReessayer.title = enNSString(etat.titreDuBoutonReessayer);
  _boutonDetail.hidden = !etat.boutonDetail;
  _boutonDetail.title = enNSString(etat.titreDuBoutonDetail);
  _boutons.hidden = !etat.boutonReessayer && !etat.boutonDetail;
  // Jusqu’à quelques mégaoctets : la vue ne les met en page que si on les déplie.
  if (etat.cadreDetail) _detail.string = enNSString(etat.detail);
  _cadreDetail.hidden = !etat.cadreDetail;
  self.hidden = !etat.visible;
}

- (void)ecrire:(const std::string&)texte dans:(NSTextField*)etiquette {
  etiquette.stringValue = enNSString(texte);
  etiquette.hidden = texte.empty();
}

@end
