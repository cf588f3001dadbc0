// EssaiNotifications : ce qu’un scénario lit de la doublure du centre de notifications, et ce qu’il y fait
// arriver. Ses réponses viennent sur un fil qui n’est pas le principal.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#import <UserNotifications/UserNotifications.h>

namespace essais {

struct CentreNote {
  std::mutex verrou; // les champs ci-dessous
  UNAuthorizationStatus statut = UNAuthorizationStatusNotDetermined;
  bool lUtilisateurAccepte = true;
  NSString* refus = nil; // ce que le système dit en refusant une notification
  int reglagesLus = 0;
  std::vector<UNAuthorizationOptions> demandes;
  std::vector<UNNotificationRequest*> ajouts;
  NSMutableDictionary* montrees = [NSMutableDictionary dictionary]; // par identifiant
};
CentreNote& centreNote();

// Ce que le centre montre, l’application étant devant.
UNNotificationPresentationOptions presenter(UNNotificationRequest* demande);
// L’utilisateur clique ; `fini` vient quand l’application l’a dit.
void cliquer(UNNotificationRequest* demande, void (^fini)(void));

} // namespace essais
