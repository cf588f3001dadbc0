#include "EssaiNotifications.hpp"

#include <thread>

using essais::centreNote;

namespace {

void surUnFilAPart(void (^faire)(void)) {
  std::thread([faire] {
    @autoreleasepool {
      faire();
    }
  }).detach();
}

} // namespace

@implementation UNNotificationSettings
@end
@implementation UNNotificationSound
+ (UNNotificationSound*)defaultSound {
  static UNNotificationSound* const son = [UNNotificationSound new];
  return son;
}
- (id)copyWithZone:(NSZone*)zone {
  return self;
}
@end
@implementation UNNotificationTrigger
@end
@implementation UNNotificationContent
@end
@implementation UNMutableNotificationContent
@end
@implementation UNNotification
@end
@implementation UNNotificationResponse
@end
@implementation UNNotificationRequest
+ (instancetype)requestWithIdentifier:(NSString*)identifiant
                              content:(UNNotificationContent*)contenu
                              trigger:(UNNotificationTrigger*)declencheur {
  UNNotificationRequest* demande = [UNNotificationRequest new];
  demande.identifier = identifiant;
  demande.content = contenu;
  demande.trigger = declencheur;
  return demande;
}
@end

@implementation UNUserNotificationCenter

+ (UNUserNotificationCenter*)currentNotificationCenter {
  static UNUserNotificationCenter* const centre = [UNUserNotificationCenter new];
  if (NSBundle.mainBundle.bundleIdentifier == nil)
    [NSException raise:NSInternalInconsistencyException format:@"bundleProxyForCurrentProcess is nil"];
  return centre;
}

- (void)getNotificationSettingsWithCompletionHandler:(void (^)(UNNotificationSettings*))fini {
  UNNotificationSettings* reglages = [UNNotificationSettings new];
  const std::lock_guard garde(centreNote().verrou);
  ++centreNote().reglagesLus;
  reglages.authorizationStatus = centreNote().statut;
  surUnFilAPart(^{
    fini(reglages);
  });
}

- (void)requestAuthorizationWithOptions:(UNAuthorizationOptions)options
                      completionHandler:(void (^)(BOOL, NSError*))fini {
  const std::lock_guard garde(centreNote().verrou);
  centreNote().demandes.push_back(options);
  const BOOL accordee = centreNote().lUtilisateurAccepte;
  centreNote().statut = accordee ? UNAuthorizationStatusAuthorized : UNAuthorizationStatusDenied;
  surUnFilAPart(^{
    fini(accordee, nil);
  });
}

- (void)addNotificationRequest:(UNNotificationRequest*)demande
         withCompletionHandler:(void (^)(NSError*))fini {
  const std::lock_guard garde(centreNote().verrou);
  centreNote().ajouts.push_back(demande);
  NSString* refus = centreNote().refus;
  if (refus == nil) centreNote().montrees[demande.identifier] = demande;
  NSError* erreur = refus == nil ? nil
                                 : [NSError errorWithDomain:@"UNErrorDomain"
                                                       code:1
                                                   userInfo:@{NSLocalizedDescriptionKey : refus}];
  surUnFilAPart(^{
    fini(erreur);
  });
}

@end

namespace essais {

CentreNote& centreNote() {
  static auto* const centre = new CentreNote;
  return *centre;
}

UNNotificationPresentationOptions presenter(UNNotificationRequest* demande) {
  UNUserNotificationCenter* centre = UNUserNotificationCenter.currentNotificationCenter;
  UNNotification* notification = [UNNotification new];
  notification.request = demande;
  __block UNNotificationPresentationOptions choisies = 0;
  [centre.delegate userNotificationCenter:centre
                  willPresentNotification:notification
                    withCompletionHandler:^(UNNotificationPresentationOptions options) {
                      choisies = options;
                    }];
  return choisies;
}

void cliquer(UNNotificationRequest* demande, void (^fini)(void)) {
  UNNotificationResponse* reponse = [UNNotificationResponse new];
  reponse.notification = [UNNotification new];
  reponse.notification.request = demande;
  surUnFilAPart(^{
    UNUserNotificationCenter* centre = UNUserNotificationCenter.currentNotificationCenter;
    [centre.delegate userNotificationCenter:centre
             didReceiveNotificationResponse:reponse
                      withCompletionHandler:fini];
  });
}

} // namespace essais
