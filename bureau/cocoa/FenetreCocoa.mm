#include "bureau/cocoa/FenetreCocoa.hpp"

#include "bureau/cocoa/MenusCocoa.hpp"
#include "bureau/cocoa/Textes.hpp"
#include "fenetre/ChargementDeLaPage.hpp"

#include <utility>

namespace keltrove::bureau {

FenetreCocoa::FenetreCocoa(fenetre::ObservateurDeLaVue& observateur)
    : controleur_([[FenetrePrincipale alloc] initAvecObservateur:&observateur]) {}

FenetreCocoa::~FenetreCocoa() {
  [controleur_ quitterLObservateur];
}

void FenetreCocoa::dessiner(const fenetre::EtatEcran& etat) {
  controleur_.vueWeb.couverte = etat.visible;
  [controleur_.ecran dessiner:etat];
  donnerLeClavier(etat.clavier());
}

void FenetreCocoa::donnerLeClavier(fenetre::EtatEcran::Clavier clavier) {
  using Clavier = fenetre::EtatEcran::Clavier;
  NSWindow* fenetre = controleur_.fenetre;
  EcranAttente* surLaPage = controleur_.ecran;
  if (clavier == Clavier::page) {
    [fenetre makeFirstResponder:controleur_.vueWeb];
    return;
  }
  NSView* actuel =
      [fenetre.firstResponder isKindOfClass:NSView.class] ? (NSView*)fenetre.firstResponder : nil;
  const bool dansLEcran = actuel != surLaPage && [actuel isDescendantOf:surLaPage];
  if (dansLEcran && !actuel.isHiddenOrHasHiddenAncestor) return;
  // Un bouton ne prend le clavier que si le système permet d’aller partout avec lui.
  NSButton* bouton = surLaPage.boutonReessayer;
  const bool auBouton = clavier == Clavier::reessayer && bouton.acceptsFirstResponder;
  [fenetre makeFirstResponder:auBouton ? bouton : surLaPage];
}

void FenetreCocoa::dessiner(const fenetre::EtatBandeau& etat) {
  controleur_.bandeau.stringValue = enNSString(etat.texte);
  controleur_.bandeau.hidden = !etat.visible;
}

void FenetreCocoa::poserLesMenus(const std::vector<fenetre::Menus::Menu>& menus) {
  bureau::poserLesMenus(menus, controleur_);
}

void FenetreCocoa::mettreDevant() {
  [controleur_.fenetre makeKeyAndOrderFront:nil];
}

std::int64_t FenetreCocoa::mettreDerriere() {
  [controleur_.fenetre orderBack:nil];
  return controleur_.fenetre.windowNumber;
}

void FenetreCocoa::charger(const std::string& adresse) {
  NSURL* url = [NSURL URLWithString:enNSString(adresse)];
  if (url == nil) return;
  [controleur_.vueWeb
      loadRequest:[NSURLRequest requestWithURL:url
                                   cachePolicy:NSURLRequestReloadIgnoringLocalAndRemoteCacheData
                               timeoutInterval:fenetre::ChargementDeLaPage::delaiSansRienRecevoir]];
}

void FenetreCocoa::arreterLeChargement() {
  [controleur_.vueWeb stopLoading];
}

void FenetreCocoa::evaluer(const std::string& expression,
                           std::function<void(std::optional<std::string>)> fini) {
  [controleur_.vueWeb evaluateJavaScript:enNSString(expression)
                       completionHandler:^(id valeur, NSError* erreur) {
                         const bool estUnTexte = erreur == nil && [valeur isKindOfClass:NSString.class];
                         fini(estUnTexte ? std::optional(enUTF8(valeur)) : std::nullopt);
                       }];
}

void FenetreCocoa::annoncer(const std::string& texte) {
  NSAccessibilityPostNotificationWithUserInfo(
      controleur_.fenetre, NSAccessibilityAnnouncementRequestedNotification, @{
        NSAccessibilityAnnouncementKey : enNSString(texte),
        NSAccessibilityPriorityKey : @(NSAccessibilityPriorityMedium)
      });
}

} // namespace keltrove::bureau
