// Là où GNUstep 0.29 se conduit autrement que macOS : la mise en page avant chaque dessin, les modes communs
// de la boucle, la fermeture remise à plus tard, la touche Maj d’un raccourci.

#import <AppKit/AppKit.h>
#import <objc/runtime.h>

namespace {

NSArray* modesCommuns() {
  return @[ NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode ];
}

void (*dessinerDOrigine)(id, SEL);
void dessiner(NSWindow* fenetre, SEL selecteur) {
  [fenetre layoutIfNeeded];
  dessinerDOrigine(fenetre, selecteur);
}

void (*ajouterDOrigine)(id, SEL, NSTimer*, NSString*);
void ajouter(NSRunLoop* boucle, SEL selecteur, NSTimer* minuteur, NSString* mode) {
  NSArray* modes = [mode isEqualToString:NSRunLoopCommonModes] ? modesCommuns() : @[ mode ];
  for (NSString* un in modes)
    ajouterDOrigine(boucle, selecteur, minuteur, un);
}

// La boucle qui tourne dans l’action d’un minuteur ne le tire pas de nouveau.
void (*tirerDOrigine)(id, SEL);
void tirer(NSTimer* minuteur, SEL selecteur) {
  static NSMutableSet* const tires = [NSMutableSet set];
  if ([tires containsObject:minuteur]) {
    minuteur.fireDate = NSDate.distantFuture;
    return;
  }
  [tires addObject:minuteur];
  tirerDOrigine(minuteur, selecteur);
  [tires removeObject:minuteur];
}

void demanderAuFilPrincipal(id objet, SEL, SEL quoi, id avec, BOOL attendre) {
  [objet performSelectorOnMainThread:quoi withObject:avec waitUntilDone:attendre modes:modesCommuns()];
}

template <typename Fonction>
Fonction remplacer(Class classe, SEL selecteur, Fonction nouvelle) {
  return (Fonction)method_setImplementation(class_getInstanceMethod(classe, selecteur), (IMP)nouvelle);
}

} // namespace

@interface EssaiRemplacements : NSObject
@end
@implementation EssaiRemplacements
+ (void)load {
  @autoreleasepool {
    dessinerDOrigine = remplacer([NSWindow class], @selector(displayIfNeeded), (void (*)(id, SEL))dessiner);
    ajouterDOrigine = remplacer([NSRunLoop class], @selector(addTimer:forMode:),
                                (void (*)(id, SEL, NSTimer*, NSString*))ajouter);
    tirerDOrigine = remplacer([NSTimer class], @selector(fire), (void (*)(id, SEL))tirer);
    remplacer([NSObject class], @selector(performSelectorOnMainThread:withObject:waitUntilDone:),
              demanderAuFilPrincipal);
  }
}
@end

@implementation NSWindow (MiseEnPage)
- (void)layoutIfNeeded {
  static bool enCours = false;
  if (enCours) return;
  enCours = true;
  for (int i = 0; i < 3; ++i) // une pile se place d’après ses rangées, qui se placent en elle
    [self.contentView layoutSubtreeIfNeeded];
  enCours = false;
}
@end

// « Plus tard » ne fait tourner la boucle que dans le mode modal, et la réponse termine le processus.
@implementation NSApplication (Fermeture)
static int reponse = -1;
static bool enFermeture = false;
- (void)terminate:(id)source {
  if (enFermeture) return;
  enFermeture = true;
  reponse = -1;
  NSApplicationTerminateReply issue = [self.delegate applicationShouldTerminate:self];
  if (issue == NSTerminateLater) {
    reponse = -1; // donnée pendant la question, elle est perdue
    while (reponse < 0)
      @autoreleasepool {
        [NSRunLoop.currentRunLoop runMode:NSModalPanelRunLoopMode
                               beforeDate:[NSDate dateWithTimeIntervalSinceNow:1]];
      }
    issue = reponse ? NSTerminateNow : NSTerminateCancel;
  }
  enFermeture = false;
  if (issue == NSTerminateCancel) return;
  [NSNotificationCenter.defaultCenter postNotificationName:NSApplicationWillTerminateNotification
                                                    object:self];
  [NSUserDefaults.standardUserDefaults synchronize];
  exit(0);
}
- (void)replyToApplicationShouldTerminate:(BOOL)oui {
  reponse = oui;
}
@end

@implementation NSMenu (Raccourcis)
- (BOOL)performKeyEquivalent:(NSEvent*)evenement {
  const NSUInteger comptent = NSCommandKeyMask | NSShiftKeyMask | NSAlternateKeyMask | NSControlKeyMask;
  NSString* lettre = evenement.charactersIgnoringModifiers.lowercaseString;
  for (NSMenuItem* article in self.itemArray) {
    if (article.hasSubmenu) {
      if ([article.submenu performKeyEquivalent:evenement]) return YES;
      continue;
    }
    const bool memesTouches =
        (article.keyEquivalentModifierMask & comptent) == (evenement.modifierFlags & comptent);
    if (article.keyEquivalent.length == 0 || !memesTouches || ![lettre isEqualToString:article.keyEquivalent])
      continue;
    [self update];
    if (article.isEnabled) [NSApp sendAction:article.action to:article.target from:article];
    return YES;
  }
  return NO;
}
@end
