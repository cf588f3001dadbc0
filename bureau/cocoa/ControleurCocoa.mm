// Le contrôleur de la fenêtre : ce qu’elle contient, et ce qui arrive à l’application autour d’elle.

#include "bureau/cocoa/AProposCocoa.hpp"
#include "bureau/cocoa/Couleurs.hpp"
#include "bureau/cocoa/FenetreCocoa.hpp"
#include "bureau/cocoa/MessageDeWebKit.hpp"
#include "bureau/cocoa/NavigationCocoa.hpp"
#include "bureau/cocoa/Textes.hpp"
#include "fenetre/Apparence.hpp"
#include "fenetre/Cadre.hpp"
#include "fenetre/LecteurDEcran.hpp"
#include "pont/PontNotifications.hpp"

using namespace keltrove;
using bureau::enNSColor;
using bureau::enNSString;

namespace Apparence = fenetre::Apparence;

// WebKit retient qui reçoit les messages de la page, et le contrôleur retient WebKit : le relais ne retient
// personne.
@interface RelaisDeLaPage : NSObject <WKScriptMessageHandler>
@property(nonatomic, weak) id<WKScriptMessageHandler> destinataire;
@end
@implementation RelaisDeLaPage
- (void)userContentController:(WKUserContentController*)contenus
      didReceiveScriptMessage:(WKScriptMessage*)message {
  [self.destinataire userContentController:contenus didReceiveScriptMessage:message];
}
@end

@implementation FenetrePrincipale {
  NavigationCocoa* _navigation;
}

- (instancetype)initAvecObservateur:(fenetre::ObservateurDeLaVue*)observateur {
  if (!(self = [super init])) return nil;
  _observateur = observateur;
  _ecran = [[EcranAttente alloc] initWithFrame:NSZeroRect];
  [self construireLaVueWeb];
  [self construireLaFenetre];
  [self construireLeBandeau];
  [self empiler];
  [self reprendreLeCadre];
  [self ecouterLEcran];
  [self ecouterLeSysteme];
  return self;
}

- (void)construireLaVueWeb {
  WKWebViewConfiguration* configuration = [WKWebViewConfiguration new];
  configuration.websiteDataStore = [WKWebsiteDataStore defaultDataStore];
  configuration.defaultWebpagePreferences.allowsContentJavaScript = YES;
  // Une fenêtre que la page ouvre l’est alors toujours d’un geste.
  configuration.preferences.javaScriptCanOpenWindowsAutomatically = NO;
  // À quoi le serveur reconnaît la fenêtre de l’application.
  configuration.applicationNameForUserAgent =
      [NSString stringWithFormat:@"%s/%s", Apparence::nomDeLApplication, KELTROVE_VERSION];
  RelaisDeLaPage* relais = [RelaisDeLaPage new];
  relais.destinataire = self;
  for (const char* canal : {pont::PontNotifications::nomDuCanal, fenetre::canalDuLecteur})
    [configuration.userContentController addScriptMessageHandler:relais name:enNSString(canal)];

  _vueWeb = [[VueWebDepot alloc] initWithFrame:NSZeroRect configuration:configuration];
  _vueWeb.underPageBackgroundColor = bureau::fondDeLaFenetre();
  _vueWeb.allowsBackForwardNavigationGestures = NO;
  _vueWeb.accessibilityLabel = enNSString(Apparence::Noms::page);
  if (@available(macOS 13.3, *)) _vueWeb.inspectable = YES;
  __weak FenetrePrincipale* faible = self;
  _vueWeb.quandDesFichiersSontIllisibles = ^(NSUInteger combien) {
    if (auto* celui = faible.observateur) celui->quandDesFichiersSontIllisibles(combien);
  };
  _navigation = [[NavigationCocoa alloc] initAvecVue:_vueWeb observateur:_observateur];
}

- (void)construireLaFenetre {
  const NSWindowStyleMask style = NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                                  NSWindowStyleMaskMiniaturizable | NSWindowStyleMaskResizable;
  _fenetre = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, Apparence::largeur, Apparence::hauteur)
                                         styleMask:style
                                           backing:NSBackingStoreBuffered
                                             defer:NO];
  _fenetre.releasedWhenClosed = NO;
  _fenetre.title = enNSString(Apparence::titreDeLaFenetre);
  _fenetre.minSize = NSMakeSize(Apparence::largeurMinimale, Apparence::hauteurMinimale);
  _fenetre.backgroundColor = bureau::fondDeLaFenetre();
  _fenetre.tabbingMode = NSWindowTabbingModeDisallowed;
  _fenetre.delegate = self;
  // Sombre, quelle que soit l’apparence du système.
  _ecran.appearance = [NSAppearance appearanceNamed:NSAppearanceNameDarkAqua];
}

- (void)construireLeBandeau {
  namespace Bandeau = Apparence::Bandeau;
  _bandeau = [NSTextField labelWithString:@""];
  _bandeau.font = [NSFont systemFontOfSize:Bandeau::tailleDuTexte];
  _bandeau.textColor = enNSColor(Bandeau::texte);
  _bandeau.wantsLayer = YES;
  _bandeau.layer.backgroundColor = enNSColor(Bandeau::fond).CGColor;
  _bandeau.layer.cornerRadius = Bandeau::arrondi;
  _bandeau.alignment = NSTextAlignmentCenter;
  _bandeau.hidden = YES;
}

- (void)empiler {
  namespace Bandeau = Apparence::Bandeau;
  NSView* contenu = [[NSView alloc] initWithFrame:_fenetre.contentLayoutRect];
  for (NSView* vue in @[ _vueWeb, _ecran, _bandeau ]) {
    vue.translatesAutoresizingMaskIntoConstraints = NO;
    [contenu addSubview:vue];
  }
  _fenetre.contentView = contenu;
  NSMutableArray* contraintes = [NSMutableArray arrayWithArray:@[
    [_bandeau.centerXAnchor constraintEqualToAnchor:contenu.centerXAnchor],
    [_bandeau.bottomAnchor constraintEqualToAnchor:contenu.bottomAnchor constant:-Bandeau::margeDuBas],
    [_bandeau.heightAnchor constraintEqualToConstant:Bandeau::hauteur],
  ]];
  for (NSView* vue in @[ _vueWeb, _ecran ])
    [contraintes addObjectsFromArray:@[
      [vue.leadingAnchor constraintEqualToAnchor:contenu.leadingAnchor],
      [vue.trailingAnchor constraintEqualToAnchor:contenu.trailingAnchor],
      [vue.topAnchor constraintEqualToAnchor:contenu.topAnchor],
      [vue.bottomAnchor constraintEqualToAnchor:contenu.bottomAnchor],
    ]];
  [NSLayoutConstraint activateConstraints:contraintes];
}

- (void)reprendreLeCadre {
  NSString* nom = enNSString(Apparence::nomDuCadre);
  [_fenetre setFrameAutosaveName:nom];
  if ([_fenetre setFrameUsingName:nom]) return;
  const auto ouverture = fenetre::ouverture(std::nullopt);
  [_fenetre setContentSize:NSMakeSize(ouverture.cadre.largeur, ouverture.cadre.hauteur)];
  if (ouverture.auCentre) [_fenetre center];
}

// L’écran qui la portait s’en est allé : personne ne la retrouverait.
- (void)revenirSurUnEcran {
  for (NSScreen* un in NSScreen.screens)
    if (NSIntersectsRect(un.visibleFrame, _fenetre.frame)) return;
  [_fenetre center];
}

- (void)ecouterLEcran {
  __weak FenetrePrincipale* faible = self;
  _ecran.quandOnReessaie = ^{
    if (auto* celui = faible.observateur) celui->quandOnReessaie();
  };
  _ecran.quandOnBasculeLeDetail = ^{
    if (auto* celui = faible.observateur) celui->quandOnBasculeLeDetail();
  };
}

- (void)ecouterLeSysteme {
  NSNotificationCenter* centre = NSNotificationCenter.defaultCenter;
  for (NSString* nom in
       @[ NSApplicationDidBecomeActiveNotification, NSApplicationDidResignActiveNotification ])
    [centre addObserver:self selector:@selector(direLeRegard) name:nom object:nil];
  [centre addObserver:self
             selector:@selector(revenirSurUnEcran)
                 name:NSApplicationDidChangeScreenParametersNotification
               object:nil];
  [NSWorkspace.sharedWorkspace addObserver:self forKeyPath:@"voiceOverEnabled" options:0 context:nil];
  // Plus tard : l’observateur n’est pas encore construit.
  [self performSelectorOnMainThread:@selector(direCeQuOnSait) withObject:nil waitUntilDone:NO];
}

- (void)quitterLObservateur {
  _observateur = nullptr;
  [_navigation quitterLaVue];
  _fenetre.delegate = nil;
  [NSNotificationCenter.defaultCenter removeObserver:self];
  [NSWorkspace.sharedWorkspace removeObserver:self forKeyPath:@"voiceOverEnabled"];
}

- (void)direCeQuOnSait {
  [self direLeRegard];
  [self direLeLecteur];
}

- (void)direLeRegard {
  if (_observateur != nullptr) _observateur->quandLeRegardChange(NSApp.isActive);
}

- (void)direLeLecteur {
  if (_observateur != nullptr)
    _observateur->quandLeLecteurDEcranChange({.tourne = NSWorkspace.sharedWorkspace.voiceOverEnabled == YES});
}

- (void)observeValueForKeyPath:(NSString*)chemin
                      ofObject:(id)objet
                        change:(NSDictionary*)changement
                       context:(void*)contexte {
  [self performSelectorOnMainThread:@selector(direLeLecteur) withObject:nil waitUntilDone:NO];
}

- (void)rechargerVraiment:(id)source {
  if (_observateur != nullptr) _observateur->quandOnRecharge();
}

// Avant l’application, à qui le menu s’adresse sinon.
- (void)orderFrontStandardAboutPanel:(id)source {
  bureau::montrerLAPropos();
}

- (void)userContentController:(WKUserContentController*)contenus
      didReceiveScriptMessage:(WKScriptMessage*)message {
  if (_observateur != nullptr)
    _observateur->quandLaPageEcrit(bureau::enUTF8(message.name), bureau::lireLeMessage(message.body));
}

@end
