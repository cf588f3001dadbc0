// Une mise en page par contraintes, au plus juste : des bords, des centres, des tailles, et « au plus ».

#include "Champs.hpp"

#include <algorithm>
#include <cmath>
#include <map>

using essais::champsDe;

@interface EssaiAncre : NSLayoutDimension {
@public
  __unsafe_unretained NSView* _vue;
  NSLayoutAttribute _attribut;
}
@end

@interface EssaiContrainte : NSLayoutConstraint {
@public
  __unsafe_unretained NSView *_vue, *_autre;
  NSLayoutAttribute _attribut, _attributDeLAutre;
  NSLayoutRelation _sorte;
  CGFloat _plus;
}
@end
@implementation EssaiContrainte
- (void)setActive:(BOOL)oui {
  NSMutableArray* actives = champsDe(_vue).contraintes;
  if (oui && ![actives containsObject:self]) [actives addObject:self];
  if (!oui) [actives removeObject:self];
}
- (BOOL)isActive {
  return [champsDe(_vue).contraintes containsObject:self];
}
- (BOOL)isEqual:(id)autre {
  return autre == self;
}
- (NSUInteger)hash {
  return (NSUInteger)(__bridge void*)self;
}
@end

@implementation NSLayoutConstraint (Manquant)
+ (void)activateConstraints:(NSArray*)contraintes {
  for (NSLayoutConstraint* contrainte in contraintes)
    [contrainte setActive:YES];
}
@end

@implementation EssaiAncre
- (NSLayoutConstraint*)vers:(NSLayoutAnchor*)autre
                   relation:(NSLayoutRelation)relation
                       plus:(CGFloat)constante {
  EssaiContrainte* contrainte = [EssaiContrainte new];
  contrainte->_vue = _vue;
  contrainte->_attribut = _attribut;
  contrainte->_sorte = relation;
  contrainte->_plus = constante;
  if (autre == nil) return contrainte;
  contrainte->_autre = ((EssaiAncre*)autre)->_vue;
  contrainte->_attributDeLAutre = ((EssaiAncre*)autre)->_attribut;
  return contrainte;
}
- (NSLayoutConstraint*)constraintEqualToAnchor:(NSLayoutAnchor*)autre {
  return [self vers:autre relation:NSLayoutRelationEqual plus:0];
}
- (NSLayoutConstraint*)constraintEqualToAnchor:(NSLayoutAnchor*)autre constant:(CGFloat)constante {
  return [self vers:autre relation:NSLayoutRelationEqual plus:constante];
}
- (NSLayoutConstraint*)constraintLessThanOrEqualToAnchor:(NSLayoutAnchor*)autre constant:(CGFloat)constante {
  return [self vers:autre relation:NSLayoutRelationLessThanOrEqual plus:constante];
}
- (NSLayoutConstraint*)constraintEqualToConstant:(CGFloat)constante {
  return [self vers:nil relation:NSLayoutRelationEqual plus:constante];
}
@end

namespace {

id ancre(NSView* vue, NSLayoutAttribute attribut) {
  EssaiAncre* ancre = [EssaiAncre new];
  ancre->_vue = vue;
  ancre->_attribut = attribut;
  return ancre;
}

// Le rectangle de la vue dans son contenant, compté du coin haut gauche.
NSRect depuisLeHaut(NSView* vue, NSView* contenant) {
  if (vue == contenant) return NSMakeRect(0, 0, NSWidth(vue.bounds), NSHeight(vue.bounds));
  NSRect cadre = [contenant convertRect:vue.bounds fromView:vue];
  if (!contenant.isFlipped) cadre.origin.y = NSHeight(contenant.bounds) - NSMaxY(cadre);
  return cadre;
}

CGFloat valeurDe(NSRect cadre, NSLayoutAttribute attribut) {
  switch (attribut) {
  case NSLayoutAttributeLeading:
    return NSMinX(cadre);
  case NSLayoutAttributeTrailing:
    return NSMaxX(cadre);
  case NSLayoutAttributeCenterX:
    return NSMidX(cadre);
  case NSLayoutAttributeTop:
    return NSMinY(cadre);
  case NSLayoutAttributeBottom:
    return NSMaxY(cadre);
  case NSLayoutAttributeCenterY:
    return NSMidY(cadre);
  case NSLayoutAttributeWidth:
    return NSWidth(cadre);
  case NSLayoutAttributeHeight:
    return NSHeight(cadre);
  default:
    return 0;
  }
}

using Valeurs = std::map<NSLayoutAttribute, CGFloat>;

void placerSurUnAxe(const Valeurs& fixes, NSLayoutAttribute debut, NSLayoutAttribute fin,
                    NSLayoutAttribute centre, CGFloat& origine, CGFloat& longueur) {
  if (fixes.contains(debut) && fixes.contains(fin)) longueur = fixes.at(fin) - fixes.at(debut);
  if (fixes.contains(debut))
    origine = fixes.at(debut);
  else if (fixes.contains(fin))
    origine = fixes.at(fin) - longueur;
  else if (fixes.contains(centre))
    origine = std::round(fixes.at(centre) - longueur / 2);
}

void placer(NSView* vue) {
  NSView* contenant = vue.superview;
  if (contenant == nil || vue.translatesAutoresizingMaskIntoConstraints) return;
  Valeurs fixes;
  Valeurs auPlus;
  for (EssaiContrainte* une in champsDe(vue).contraintes) {
    const CGFloat base =
        une->_autre ? valeurDe(depuisLeHaut(une->_autre, contenant), une->_attributDeLAutre) : 0;
    (une->_sorte == NSLayoutRelationEqual ? fixes : auPlus)[une->_attribut] = base + une->_plus;
  }
  if (fixes.empty()) return; // à la pile qui la contient
  NSRect cadre = depuisLeHaut(vue, contenant);
  cadre.size = vue.fittingSize;
  if (auPlus.contains(NSLayoutAttributeWidth))
    cadre.size.width = std::min(NSWidth(cadre), auPlus.at(NSLayoutAttributeWidth));
  placerSurUnAxe(fixes, NSLayoutAttributeLeading, NSLayoutAttributeTrailing, NSLayoutAttributeCenterX,
                 cadre.origin.x, cadre.size.width);
  placerSurUnAxe(fixes, NSLayoutAttributeTop, NSLayoutAttributeBottom, NSLayoutAttributeCenterY,
                 cadre.origin.y, cadre.size.height);
  if ([contenant isKindOfClass:[NSStackView class]]) cadre.origin = depuisLeHaut(vue, contenant).origin;
  if (!contenant.isFlipped) cadre.origin.y = NSHeight(contenant.bounds) - NSMaxY(cadre);
  if (NSEqualRects(cadre, vue.frame)) return;
  vue.frame = cadre;
  [contenant setNeedsDisplay:YES];
}

NSSize tailleFixeDe(NSView* vue, NSSize taille) {
  for (EssaiContrainte* une in champsDe(vue).contraintes) {
    if (une->_autre != nil || une->_sorte != NSLayoutRelationEqual) continue;
    if (une->_attribut == NSLayoutAttributeWidth) taille.width = une->_plus;
    if (une->_attribut == NSLayoutAttributeHeight) taille.height = une->_plus;
  }
  return taille;
}

} // namespace

@interface NSStackView (Prive)
- (void)ranger;
@end

@implementation NSView (Contraintes)
- (NSSize)fittingSize {
  return tailleFixeDe(self, self.frame.size);
}
- (NSLayoutXAxisAnchor*)leadingAnchor {
  return ancre(self, NSLayoutAttributeLeading);
}
- (NSLayoutXAxisAnchor*)trailingAnchor {
  return ancre(self, NSLayoutAttributeTrailing);
}
- (NSLayoutXAxisAnchor*)centerXAnchor {
  return ancre(self, NSLayoutAttributeCenterX);
}
- (NSLayoutYAxisAnchor*)topAnchor {
  return ancre(self, NSLayoutAttributeTop);
}
- (NSLayoutYAxisAnchor*)bottomAnchor {
  return ancre(self, NSLayoutAttributeBottom);
}
- (NSLayoutYAxisAnchor*)centerYAnchor {
  return ancre(self, NSLayoutAttributeCenterY);
}
- (NSLayoutDimension*)widthAnchor {
  return ancre(self, NSLayoutAttributeWidth);
}
- (NSLayoutDimension*)heightAnchor {
  return ancre(self, NSLayoutAttributeHeight);
}
- (void)layoutSubtreeIfNeeded {
  placer(self);
  if ([self isKindOfClass:[NSStackView class]]) [(NSStackView*)self ranger];
  for (NSView* vue in [self.subviews copy])
    [vue layoutSubtreeIfNeeded];
}
@end

@implementation NSControl (Contraintes)
- (NSSize)fittingSize {
  NSSize taille = self.cell ? [self.cell cellSize] : self.frame.size;
  const CGFloat largeur = champsDe(self).largeurVoulue;
  const bool replie = largeur > 0 && (taille.width > largeur || [self.stringValue containsString:@"\n"]);
  if (replie) {
    // La cellule de GNUstep ne se mesure pas repliée ; son texte, si.
    constexpr CGFloat bords = 6;
    taille = [[self.cell attributedStringValue] boundingRectWithSize:NSMakeSize(largeur, CGFLOAT_MAX)
                                                             options:NSStringDrawingUsesLineFragmentOrigin]
                 .size;
    taille.width = std::min(taille.width, largeur) + bords;
  }
  if ([self isKindOfClass:[NSButton class]]) {
    taille.width += 24;
    taille.height = std::max(taille.height, 26.0);
  }
  return tailleFixeDe(self, NSMakeSize(std::ceil(taille.width), std::ceil(taille.height)));
}
@end

@implementation NSProgressIndicator (Contraintes)
- (NSSize)fittingSize {
  return NSMakeSize(32, 32);
}
@end

@implementation NSStackView {
  NSArray* _rangees;
}
+ (instancetype)stackViewWithViews:(NSArray*)vues {
  NSStackView* pile = [[self alloc] initWithFrame:NSZeroRect];
  pile->_rangees = [vues copy];
  pile->_spacing = 8;
  pile.translatesAutoresizingMaskIntoConstraints = NO;
  for (NSView* vue in vues) {
    vue.translatesAutoresizingMaskIntoConstraints = NO;
    [pile addSubview:vue];
  }
  return pile;
}
- (NSArray*)arrangedSubviews {
  return _rangees;
}
- (BOOL)isFlipped {
  return YES;
}
- (NSArray*)montrees {
  NSMutableArray* montrees = [NSMutableArray array];
  for (NSView* vue in _rangees)
    if (!vue.isHidden) [montrees addObject:vue];
  return montrees;
}
- (NSSize)fittingSize {
  const bool debout = _orientation == NSUserInterfaceLayoutOrientationVertical;
  CGFloat longueur = 0, travers = 0;
  for (NSView* vue in self.montrees) {
    const NSSize taille = vue.fittingSize;
    longueur += (longueur > 0 ? _spacing : 0) + (debout ? taille.height : taille.width);
    travers = std::max(travers, debout ? taille.width : taille.height);
  }
  return debout ? NSMakeSize(travers, longueur) : NSMakeSize(longueur, travers);
}
- (void)ranger {
  const bool debout = _orientation == NSUserInterfaceLayoutOrientationVertical;
  CGFloat place = 0;
  for (NSView* vue in self.montrees) {
    const NSSize taille = vue.fittingSize;
    const CGFloat travers =
        debout ? NSWidth(self.bounds) - taille.width : NSHeight(self.bounds) - taille.height;
    const CGFloat centre = std::round(travers / 2);
    vue.frame = debout ? NSMakeRect(centre, place, taille.width, taille.height)
                       : NSMakeRect(place, centre, taille.width, taille.height);
    place += (debout ? taille.height : taille.width) + _spacing;
  }
  [self setNeedsDisplay:YES];
}
@end
