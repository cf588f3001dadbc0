#include "bureau/cocoa/ApplicationCocoa.hpp"

#include "bureau/cocoa/FenetreCocoa.hpp"
#include "bureau/cocoa/Textes.hpp"
#include "socle/Reglages.hpp"

#include <utility>

@implementation DelegueApplication {
  keltrove::app::DelegueApplication* _delegue;
}

- (instancetype)initAvecDelegue:(keltrove::app::DelegueApplication*)delegue {
  if ((self = [super init])) _delegue = delegue;
  return self;
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
  // La fermeture passe toujours par nous, qui devons arrêter le serveur.
  [NSProcessInfo.processInfo disableSuddenTermination];
  _delegue->applicationDidFinishLaunching();
}

- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication*)application {
  return YES;
}

// Du Dock, ou du Finder : AppKit n’a plus rien à y faire.
- (BOOL)applicationShouldHandleReopen:(NSApplication*)application hasVisibleWindows:(BOOL)visibles {
  _delegue->quandOnNousRelance();
  return NO;
}

- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)application {
  const bool maintenant =
      _delegue->applicationShouldTerminate() == keltrove::app::ReponseFermeture::maintenant;
  return maintenant ? NSTerminateNow : NSTerminateLater;
}

@end

namespace keltrove::bureau {
namespace {

NSApplication* creerLApplication() {
  NSApplication* application = NSApplication.sharedApplication;
  [application setActivationPolicy:socle::Reglages::accessoire() ? NSApplicationActivationPolicyAccessory
                                                                 : NSApplicationActivationPolicyRegular];
  return application;
}

} // namespace

ApplicationCocoa::ApplicationCocoa(std::shared_ptr<moteur::MoteurServeur> moteur,
                                   std::shared_ptr<socle::BoucleEvenements> boucle)
    : application_(creerLApplication()), boucle_(boucle), notifications_(boucle),
      delegue_(std::move(moteur), std::move(boucle), *this),
      delegueDAppKit_([[DelegueApplication alloc] initAvecDelegue:&delegue_]) {
  application_.delegate = delegueDAppKit_;
}

void ApplicationCocoa::faireTourner() {
  ecouterLesSignaux(signaux_, [this] { boucle_->poster([this] { demanderLaFermeture(); }); });
  [application_ run];
}

std::unique_ptr<fenetre::VueFenetre>
ApplicationCocoa::creerLaFenetre(fenetre::ObservateurDeLaVue& observateur) {
  return std::make_unique<FenetreCocoa>(observateur);
}

void ApplicationCocoa::activerLApplication() {
  [application_ activateIgnoringOtherApps:YES];
}

void ApplicationCocoa::ouvrirDansLeNavigateur(const std::string& adresse, std::function<void()> rate) {
  NSURL* url = [NSURL URLWithString:enNSString(adresse)];
  if (url == nil) {
    boucle_->poster(std::move(rate));
    return;
  }
  const auto boucle = boucle_;
  [NSWorkspace.sharedWorkspace openURL:url
                         configuration:[NSWorkspaceOpenConfiguration configuration]
                     completionHandler:^(NSRunningApplication*, NSError* erreur) {
                       if (erreur != nil) boucle->poster(rate);
                     }];
}

void ApplicationCocoa::demanderLaFermeture() {
  // La fermeture fait tourner la boucle en elle-même : ce que l’on y a posté après nous attendrait qu’elle
  // finisse.
  fermetureDemandee_ = boucle_->apres(0, [application = application_] { [application terminate:nil]; });
}

void ApplicationCocoa::partir() {
  // Une réponse donnée pendant la question même se perdrait.
  const auto repondre = [boucle = boucle_, application = application_] {
    boucle->poster([application] { [application replyToApplicationShouldTerminate:YES]; });
  };
  if (!delegue_.aRouvrir()) return repondre();
  // Rouverte d’ici : le système ne lance pas de lui-même une application qui ne s’en est pas encore allée.
  NSWorkspaceOpenConfiguration* configuration = [NSWorkspaceOpenConfiguration configuration];
  configuration.createsNewApplicationInstance = YES;
  [NSWorkspace.sharedWorkspace openApplicationAtURL:NSBundle.mainBundle.bundleURL
                                      configuration:configuration
                                  completionHandler:^(NSRunningApplication*, NSError*) {
                                    repondre();
                                  }];
}

} // namespace keltrove::bureau
