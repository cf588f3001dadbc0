// Les fabriques et les valeurs que GNUstep 0.29 n’a pas.

#include "Champs.hpp"

#include <map>

using essais::champsDe;

NSString* const NSAboutPanelOptionCredits = @"Credits";

@implementation NSColor (Manquant)
+ (NSColor*)colorWithName:(NSString*)nom dynamicProvider:(NSColor* (^)(NSAppearance*))donner {
  return donner([NSAppearance appearanceNamed:NSAppearanceNameAqua]);
}
+ (NSColor*)colorWithWhite:(CGFloat)blanc alpha:(CGFloat)opacite {
  return [NSColor colorWithCalibratedWhite:blanc alpha:opacite];
}
- (CGColorRef)CGColor {
  static NSMutableArray* const tenues = [NSMutableArray array]; // une référence de Core Graphics ne tient pas
  [tenues addObject:self];
  return (CGColorRef)(__bridge void*)self;
}
@end

@implementation NSFont (Manquant)
+ (NSFont*)systemFontOfSize:(CGFloat)taille weight:(CGFloat)graisse {
  return graisse >= NSFontWeightMedium ? [NSFont boldSystemFontOfSize:taille]
                                       : [NSFont systemFontOfSize:taille];
}
+ (NSFont*)monospacedSystemFontOfSize:(CGFloat)taille weight:(CGFloat)graisse {
  return [NSFont userFixedPitchFontOfSize:taille];
}
@end

@implementation NSTextField (Manquant)
+ (instancetype)labelWithString:(NSString*)texte {
  NSTextField* etiquette = [[self alloc] initWithFrame:NSZeroRect];
  etiquette.stringValue = texte;
  etiquette.editable = NO;
  etiquette.selectable = NO;
  etiquette.bezeled = NO;
  etiquette.bordered = NO;
  etiquette.drawsBackground = NO;
  return etiquette;
}
+ (instancetype)wrappingLabelWithString:(NSString*)texte {
  NSTextField* etiquette = [self labelWithString:texte];
  etiquette.selectable = YES;
  [etiquette.cell setWraps:YES];
  return etiquette;
}
- (CGFloat)preferredMaxLayoutWidth {
  return champsDe(self).largeurVoulue;
}
- (void)setPreferredMaxLayoutWidth:(CGFloat)largeur {
  champsDe(self).largeurVoulue = largeur;
}
@end

@implementation NSButton (Manquant)
+ (instancetype)buttonWithTitle:(NSString*)titre target:(id)cible action:(SEL)action {
  NSButton* bouton = [[self alloc] initWithFrame:NSZeroRect];
  bouton.title = titre;
  bouton.target = cible;
  bouton.action = action;
  bouton.bezelStyle = NSRoundedBezelStyle;
  [bouton setButtonType:NSMomentaryPushInButton];
  return bouton;
}
@end

namespace {
NSApplicationActivationPolicy laPolitique = NSApplicationActivationPolicyRegular;
std::map<const void*, NSWindowTabbingMode> onglets;
BOOL unLecteurTourne = NO;
} // namespace

@implementation NSApplication (Manquant)
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)politique {
  laPolitique = politique;
  return YES;
}
- (NSApplicationActivationPolicy)activationPolicy {
  return laPolitique;
}
@end

@implementation NSWindow (Manquant)
- (NSRect)contentLayoutRect {
  NSRect contenu = [self contentRectForFrameRect:self.frame];
  contenu.origin = NSZeroPoint;
  return contenu;
}
- (NSWindowTabbingMode)tabbingMode {
  return onglets[(__bridge void*)self];
}
- (void)setTabbingMode:(NSWindowTabbingMode)mode {
  onglets[(__bridge void*)self] = mode;
}
@end

@implementation NSWorkspaceOpenConfiguration
+ (instancetype)configuration {
  return [self new];
}
@end

@implementation NSWorkspace (Manquant)
- (BOOL)isVoiceOverEnabled {
  return unLecteurTourne;
}
- (void)setVoiceOverEnabled:(BOOL)oui {
  unLecteurTourne = oui;
}
@end
