// Du lancement à la page, et les modes de lancement.

#include "Scenario.hpp"
#include "fenetre/VueWebDepot.hpp"

#import <objc/runtime.h>

using namespace essais;

// Celui de droite, quand celui de gauche n’est plus là.
@interface EcranDeDroite : NSScreen
@end
@implementation EcranDeDroite
- (NSRect)visibleFrame {
  return NSMakeRect(760, 0, 1360, 900);
}
@end

namespace {

NSArray* plusQueCeluiDeDroite(id, SEL) {
  return @[ [EcranDeDroite alloc] ];
}

void exigerLaConfigurationDeLaVueWeb() {
  WKWebViewConfiguration* configuration = vueWeb().configuration;
  exiger([vueWeb() isKindOfClass:[WKWebView class]] && ![vueWeb() isMemberOfClass:[WKWebView class]],
         "VueWebDepot dérive de WKWebView");
  exiger(configuration.websiteDataStore == [WKWebsiteDataStore defaultDataStore], "la garde est durable");
  exiger(configuration.defaultWebpagePreferences.allowsContentJavaScript, "la page a ses scripts");
  exiger(!configuration.preferences.javaScriptCanOpenWindowsAutomatically, "aucune fenêtre sans geste");
  exigerEgal(texte(configuration.applicationNameForUserAgent), "Keltrove/" KELTROVE_VERSION, "le nom donné");
  NSArray* scripts = configuration.userContentController.userScripts;
  WKUserScript* script = scripts.firstObject;
  exiger(scripts.count == 1 && script.injectionTime == WKUserScriptInjectionTimeAtDocumentStart &&
             script.forMainFrameOnly,
         "un script, au début du document, dans le cadre principal");
  exigerEgal(texte(script.source), keltrove::fenetre::VueWebDepot::scriptDOuverture, "le script");
  exiger(!vueWeb().allowsBackForwardNavigationGestures && vueWeb().inspectable, "ni glissé ni secret");
  exiger(vueWeb().underPageBackgroundColor == fenetre().backgroundColor, "le fond de la fenêtre");
}

void exigerLaFenetre() {
  exiger(fenetre().styleMask ==
             (NSTitledWindowMask | NSClosableWindowMask | NSMiniaturizableWindowMask | NSResizableWindowMask),
         "le style de la fenêtre");
  exigerEgal(texte(fenetre().title), "Keltrove", "le titre");
  exiger(NSEqualSizes(fenetre().minSize, NSMakeSize(720, 480)), "la taille minimale");
  exigerEgal(texte(NSStringFromSize([fenetre().contentView frame].size)),
             texte(NSStringFromSize(NSMakeSize(1280, 820))), "la taille d’origine");
  exigerEgal(texte(fenetre().frameAutosaveName), "fenetre-keltrove", "le nom du cadre");
  exiger(fenetre().tabbingMode == NSWindowTabbingModeDisallowed, "aucun onglet");
  exiger(!fenetre().isReleasedWhenClosed, "elle survit à sa fermeture");
  exigerEgal(texte(ecran().appearance.name), texte(NSAppearanceNameDarkAqua), "l’écran est sombre");
  exiger(vueWeb().appearance == nil && ecran().superview.appearance == nil, "et lui seul");
  NSArray* empilees = [fenetre().contentView subviews];
  exiger(empilees.count == 3 && empilees[0] == vueWeb() && empilees[1] == ecran() &&
             empilees[2] == controleur().bandeau,
         "de bas en haut : la page, l’écran, le bandeau");
}

void exigerLaRequete(NSURLRequest* requete) {
  exigerEgal(texte(requete.URL.absoluteString), "http://localhost:" + std::to_string(port()) + "/",
             "l’adresse");
  exiger(requete.timeoutInterval == 60, "soixante secondes");
  exiger(requete.cachePolicy == NSURLRequestReloadIgnoringLocalAndRemoteCacheData, "rien d’aucun cache");
}

} // namespace

SCENARIO(unServeurSAllumeEtSaPageSAffiche) {
  faire([] {
    exiger(NSApp.activationPolicy == NSApplicationActivationPolicyRegular, "une application ordinaire");
    exiger(systemeNote().finsSubitesInterdites == 1, "qui ne finit que par la fermeture");
    exiger(fenetre().isVisible && fenetre().isKeyWindow, "la fenêtre est devant, avec le clavier");
    exigerEgal(titre(), "keltrove démarre…", "le titre");
    exiger(!ecran().isHidden && !ecran().roue.isHidden, "l’écran d’attente et sa roue se voient");
    exiger(fenetre().firstResponder == ecran() && !vueWeb().acceptsFirstResponder,
           "la page couverte n’a pas le clavier");
    exigerLaFenetre();
    exigerLaConfigurationDeLaVueWeb();
  });
  attendreLEtape("allume");
  attendre("une page demandée", [] { return !page().requetes.empty(); });
  faire([] {
    exigerEgal(titre(), "Le serveur répond", "le titre");
    exigerLaRequete(page().requetes.back());
  });
  afficherLaPage();
  faire([] {
    exiger(ecran().isHidden, "la page est découverte");
    exiger(fenetre().firstResponder == vueWeb(), "la page a le clavier");
    exiger(NSEqualRects(vueWeb().frame, vueWeb().superview.bounds), "elle remplit la fenêtre");
  });
  attendreLEtape("sante");
  quitter();
  attendre("l’écran de fermeture", [] { return titre() == "Fermeture…"; });
}

SCENARIO(unServeurQuiTourneDejaEstRejointEtLaisse) {
  attendreLEtape("rattache");
  faire([] {
    exigerEgal(titre(), "keltrove est déjà en route", "le titre");
    exigerLaRequete(page().requetes.back());
  });
  afficherLaPage();
  quitter();
}

SCENARIO(enModeEssaiRienNeSeMontreEtToutSArreteSeul) {
  faire([] {
    exiger(NSApp.activationPolicy == NSApplicationActivationPolicyAccessory, "une application d’appoint");
    exiger(!fenetre().isVisible, "la fenêtre est cachée");
  });
  attendreLEtape("allume");
  afficherLaPage();
  attendreLEtape("essai-quitte-tout-seul");
  const std::lock_guard garde(centreNote().verrou);
  exiger(centreNote().demandes.empty() && centreNote().reglagesLus == 0, "aucune permission demandée");
}

SCENARIO(enModeDiscretLaFenetreEstDerriereEtDitSonNumero) {
  faire([] {
    exiger(NSApp.activationPolicy == NSApplicationActivationPolicyAccessory, "une application d’appoint");
    exiger(fenetre().isVisible, "la fenêtre se voit");
  });
  attendreLEtape("allume");
  quitter();
}

SCENARIO(leCadreEstRetenuDUneFoisSurLAutre) {
  const bool premiereFois = std::string(std::getenv("KELTROVE_LANCEMENT")) == "0";
  const NSRect voulu = NSMakeRect(60, 80, 900, 600);
  if (premiereFois)
    faire([voulu] { [fenetre() setFrame:voulu display:YES]; });
  else
    faire([voulu] {
      const NSRect repris = fenetre().frame;
      exigerEgal(texte(NSStringFromSize(repris.size)), texte(NSStringFromSize(voulu.size)), "la taille");
    });
  attendreLEtape("echec-demarrage");
  quitter();
}

SCENARIO(uneFenetreDontLEcranSEnVaRevient) {
  faire([] {
    const auto changerLesEcrans = [] {
      [NSNotificationCenter.defaultCenter
          postNotificationName:NSApplicationDidChangeScreenParametersNotification
                        object:NSApp];
    };
    const NSRect aGauche = NSMakeRect(0, 80, 720, 480);
    [fenetre() setFrame:aGauche display:NO];
    changerLesEcrans();
    exiger(NSEqualRects(fenetre().frame, aGauche), "celle qui se voit ne bouge pas");
    method_setImplementation(class_getClassMethod([NSScreen class], @selector(screens)),
                             (IMP)plusQueCeluiDeDroite);
    changerLesEcrans();
    exiger(NSIntersectsRect(fenetre().frame, [[EcranDeDroite alloc] visibleFrame]), "elle est revenue");
    exiger(NSEqualSizes(fenetre().frame.size, aGauche.size), "de la même taille");
  });
  attendreLEtape("echec-demarrage");
  quitter();
}

SCENARIO(unPortPrisParUnAutreEstContourne) {
  attendreLEtape("allume");
  afficherLaPage();
  faire([] {
    const auto adresse = texte(page().requetes.back().URL.absoluteString);
    exigerEgal(adresse, "http://localhost:" + detail("allume", "port") + "/", "l’adresse");
    exiger(detail("allume", "port") != std::to_string(port()), "ailleurs");
  });
  quitter();
}

SCENARIO(desReglagesQueLOnNePeutEcrireNEmpechentRien) {
  faire([] { [fenetre() setFrame:NSMakeRect(60, 80, 900, 600) display:YES]; });
  attendreLEtape("allume");
  afficherLaPage();
  quitter();
}
