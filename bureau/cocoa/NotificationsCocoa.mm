#include "bureau/cocoa/NotificationsCocoa.hpp"

#include "bureau/cocoa/Textes.hpp"

#include <utility>

#import <AppKit/AppKit.h>
#import <UserNotifications/UserNotifications.h>

using namespace keltrove;

namespace {

NSString* const cleDuTerminal = @"idTerminal";

std::optional<std::string> terminalDe(UNNotificationResponse* reponse) {
  id terminal = reponse.notification.request.content.userInfo[cleDuTerminal];
  if (![terminal isKindOfClass:NSString.class] || [terminal length] == 0) return std::nullopt;
  return bureau::enUTF8(terminal);
}

} // namespace

@interface DelegueDuSysteme : NSObject <UNUserNotificationCenterDelegate>
@property(nonatomic) pont::DelegueDuCentre* delegue; // nul une fois qu’il n’écoute plus
- (instancetype)initAvecBoucle:(std::shared_ptr<socle::BoucleEvenements>)boucle;
@end

@implementation DelegueDuSysteme {
  std::shared_ptr<socle::BoucleEvenements> _boucle;
}

- (instancetype)initAvecBoucle:(std::shared_ptr<socle::BoucleEvenements>)boucle {
  if ((self = [super init])) _boucle = std::move(boucle);
  return self;
}

- (void)userNotificationCenter:(UNUserNotificationCenter*)centre
       willPresentNotification:(UNNotification*)notification
         withCompletionHandler:(void (^)(UNNotificationPresentationOptions))fini {
  fini(UNNotificationPresentationOptionBanner | UNNotificationPresentationOptionSound);
}

- (void)userNotificationCenter:(UNUserNotificationCenter*)centre
    didReceiveNotificationResponse:(UNNotificationResponse*)reponse
             withCompletionHandler:(void (^)(void))fini {
  const auto terminal = terminalDe(reponse);
  _boucle->poster([self, terminal, fini] {
    if (self.delegue != nullptr) self.delegue->quandOnClique(terminal);
    // Après ce que le clic vient de remettre à plus tard.
    _boucle->poster([fini] { fini(); });
  });
}

@end

namespace keltrove::bureau {
namespace {

bool centreAbsent() {
  return NSBundle.mainBundle.bundleIdentifier == nil;
}

pont::Autorisation autorisationDe(UNNotificationSettings* reglages) {
  switch (reglages.authorizationStatus) {
  case UNAuthorizationStatusAuthorized:
  case UNAuthorizationStatusProvisional:
    return pont::Autorisation::accordee;
  case UNAuthorizationStatusDenied:
    return pont::Autorisation::refusee;
  default:
    return pont::Autorisation::indeterminee;
  }
}

UNNotificationRequest* demandeDe(const pont::Notification& notification) {
  UNMutableNotificationContent* contenu = [UNMutableNotificationContent new];
  contenu.title = enNSString(notification.titre);
  contenu.body = enNSString(notification.corps);
  contenu.sound = [UNNotificationSound defaultSound];
  contenu.userInfo = @{cleDuTerminal : enNSString(notification.terminal.value_or(""))};
  return [UNNotificationRequest requestWithIdentifier:enNSString(notification.identifiant)
                                              content:contenu
                                              trigger:nil];
}

} // namespace

NotificationsCocoa::NotificationsCocoa(std::shared_ptr<socle::BoucleEvenements> boucle)
    : boucle_(std::move(boucle)) {}

void NotificationsCocoa::lireLesReglages(std::function<void(pont::Autorisation)> fini) {
  if (centreAbsent()) {
    boucle_->poster([fini] { fini(pont::Autorisation::absente); });
    return;
  }
  const auto boucle = boucle_;
  [UNUserNotificationCenter.currentNotificationCenter
      getNotificationSettingsWithCompletionHandler:^(UNNotificationSettings* reglages) {
        boucle->poster([fini, autorisation = autorisationDe(reglages)] { fini(autorisation); });
      }];
}

void NotificationsCocoa::demanderLAutorisation(std::function<void(bool accordee)> fini) {
  const auto boucle = boucle_;
  [UNUserNotificationCenter.currentNotificationCenter
      requestAuthorizationWithOptions:UNAuthorizationOptionAlert | UNAuthorizationOptionSound
                    completionHandler:^(BOOL accordee, NSError*) {
                      boucle->poster([fini, accordee] { fini(accordee == YES); });
                    }];
}

void NotificationsCocoa::ajouter(const pont::Notification& notification,
                                 std::function<void(const pont::Remise&)> fini) {
  if (centreAbsent()) {
    boucle_->poster([fini] { fini(pont::CentreAbsent{}); });
    return;
  }
  const auto boucle = boucle_;
  [UNUserNotificationCenter.currentNotificationCenter
      addNotificationRequest:demandeDe(notification)
       withCompletionHandler:^(NSError* erreur) {
         const pont::Remise remise = erreur == nil ? pont::Remise(pont::Posee{})
                                                   : pont::Remise(pont::Refusee{enUTF8(erreur.description)});
         boucle->poster([fini, remise] { fini(remise); });
       }];
}

void NotificationsCocoa::ouvrirLesReglages() {
  NSURL* adresse = [NSURL URLWithString:@"x-apple.systempreferences:com.apple.preference.notifications"];
  if (adresse != nil) [NSWorkspace.sharedWorkspace openURL:adresse];
}

void NotificationsCocoa::retenir(const std::string& drapeau) {
  [NSUserDefaults.standardUserDefaults setBool:YES forKey:enNSString(drapeau)];
}

void NotificationsCocoa::deleguerA(pont::DelegueDuCentre* delegue) {
  if (centreAbsent()) return;
  if (delegue_ == nil && delegue != nullptr) {
    delegue_ = [[DelegueDuSysteme alloc] initAvecBoucle:boucle_];
    UNUserNotificationCenter.currentNotificationCenter.delegate = delegue_;
  }
  delegue_.delegue = delegue;
}

} // namespace keltrove::bureau
