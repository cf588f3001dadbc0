#include "bureau/cocoa/NavigationCocoa.hpp"

#include "bureau/cocoa/Textes.hpp"

using namespace keltrove;
using fenetre::CauseDEchec;
using fenetre::Geste;

namespace {

fenetre::EchecDeNavigation echecDe(NSError* erreur) {
  const bool annulee = [erreur.domain isEqualToString:NSURLErrorDomain] && erreur.code == NSURLErrorCancelled;
  return {.cause = annulee ? CauseDEchec::annulation : CauseDEchec::chargement,
          .description = bureau::enUTF8(erreur.localizedDescription)};
}

fenetre::DemandeDAdresse demandeDe(WKNavigationAction* action, bool fenetreNeuve, Geste geste) {
  return {.adresse = bureau::enUTF8(action.request.URL.absoluteString),
          .fenetreNeuve = fenetreNeuve,
          .geste = geste};
}

} // namespace

@implementation NavigationCocoa {
  __weak WKWebView* _vue;
  fenetre::ObservateurDeLaVue* _observateur;
}

- (instancetype)initAvecVue:(WKWebView*)vue observateur:(fenetre::ObservateurDeLaVue*)observateur {
  if (!(self = [super init])) return nil;
  _vue = vue;
  _observateur = observateur;
  vue.navigationDelegate = self;
  vue.UIDelegate = self;
  [vue addObserver:self forKeyPath:@"estimatedProgress" options:0 context:nil];
  return self;
}

- (void)quitterLaVue {
  [_vue removeObserver:self forKeyPath:@"estimatedProgress"];
  _vue.navigationDelegate = nil;
  _vue.UIDelegate = nil;
  _vue = nil;
}

- (void)observeValueForKeyPath:(NSString*)chemin
                      ofObject:(id)objet
                        change:(NSDictionary*)changement
                       context:(void*)contexte {
  _observateur->quandNavigationAvance();
}

- (void)webView:(WKWebView*)vue didStartProvisionalNavigation:(WKNavigation*)navigation {
  _observateur->quandNavigationCommence();
}

- (void)webView:(WKWebView*)vue didFinishNavigation:(WKNavigation*)navigation {
  _observateur->quandNavigationFinie();
}

- (void)webView:(WKWebView*)vue didFailNavigation:(WKNavigation*)navigation withError:(NSError*)erreur {
  _observateur->quandNavigationRatee(echecDe(erreur));
}

- (void)webView:(WKWebView*)vue
    didFailProvisionalNavigation:(WKNavigation*)navigation
                       withError:(NSError*)erreur {
  _observateur->quandNavigationRatee(echecDe(erreur));
}

- (void)webViewWebContentProcessDidTerminate:(WKWebView*)vue {
  _observateur->quandNavigationRatee({.cause = CauseDEchec::arret});
}

- (void)webView:(WKWebView*)vue
    decidePolicyForNavigationAction:(WKNavigationAction*)action
                    decisionHandler:(void (^)(WKNavigationActionPolicy))decider {
  const bool lien = action.navigationType == WKNavigationTypeLinkActivated;
  const auto demande =
      demandeDe(action, action.targetFrame == nil, lien ? Geste::deLUtilisateur : Geste::aucun);
  decider(_observateur->laPageVeutOuvrir(demande) ? WKNavigationActionPolicyAllow
                                                  : WKNavigationActionPolicyCancel);
}

// Une fenêtre de plus n’est jamais pour nous ; la vue web n’en laisse ouvrir que d’un geste.
- (WKWebView*)webView:(WKWebView*)vue
    createWebViewWithConfiguration:(WKWebViewConfiguration*)configuration
               forNavigationAction:(WKNavigationAction*)action
                    windowFeatures:(WKWindowFeatures*)traits {
  _observateur->laPageVeutOuvrir(demandeDe(action, true, Geste::deLUtilisateur));
  return nil;
}

- (void)webView:(WKWebView*)vue
    requestMediaCapturePermissionForOrigin:(WKSecurityOrigin*)origine
                          initiatedByFrame:(WKFrameInfo*)cadre
                                      type:(WKMediaCaptureType)sorte
                           decisionHandler:(void (^)(WKPermissionDecision))decider {
  decider(WKPermissionDecisionDeny);
}

@end
