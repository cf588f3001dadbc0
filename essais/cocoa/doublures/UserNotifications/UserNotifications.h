// UserNotifications.h : la doublure du centre de notifications. Elle note ce qu’on lui demande et répond, sur
// un fil à elle, ce que le scénario a décidé (EssaiNotifications.hpp).
#pragma once

#import <Foundation/Foundation.h>

typedef NS_ENUM(NSInteger, UNAuthorizationStatus) {
  UNAuthorizationStatusNotDetermined,
  UNAuthorizationStatusDenied,
  UNAuthorizationStatusAuthorized,
  UNAuthorizationStatusProvisional
};
typedef NS_OPTIONS(NSUInteger, UNAuthorizationOptions) {
  UNAuthorizationOptionBadge = 1 << 0,
  UNAuthorizationOptionSound = 1 << 1,
  UNAuthorizationOptionAlert = 1 << 2
};
typedef NS_OPTIONS(NSUInteger, UNNotificationPresentationOptions) {
  UNNotificationPresentationOptionBadge = 1 << 0,
  UNNotificationPresentationOptionSound = 1 << 1,
  UNNotificationPresentationOptionList = 1 << 3,
  UNNotificationPresentationOptionBanner = 1 << 4
};

@interface UNNotificationSettings : NSObject
@property(nonatomic) UNAuthorizationStatus authorizationStatus;
@end
@interface UNNotificationSound : NSObject
+ (UNNotificationSound*)defaultSound;
@end
@interface UNNotificationTrigger : NSObject
@end
@interface UNNotificationContent : NSObject
@property(nonatomic, copy) NSString* title;
@property(nonatomic, copy) NSString* body;
@property(nonatomic, copy) UNNotificationSound* sound;
@property(nonatomic, copy) NSDictionary* userInfo;
@end
@interface UNMutableNotificationContent : UNNotificationContent
@end
@interface UNNotificationRequest : NSObject
+ (instancetype)requestWithIdentifier:(NSString*)identifiant
                              content:(UNNotificationContent*)contenu
                              trigger:(UNNotificationTrigger*)declencheur;
@property(nonatomic, copy) NSString* identifier;
@property(nonatomic, strong) UNNotificationContent* content;
@property(nonatomic, strong) UNNotificationTrigger* trigger;
@end
@interface UNNotification : NSObject
@property(nonatomic, strong) UNNotificationRequest* request;
@end
@interface UNNotificationResponse : NSObject
@property(nonatomic, strong) UNNotification* notification;
@end

@class UNUserNotificationCenter;
@protocol UNUserNotificationCenterDelegate <NSObject>
@optional
- (void)userNotificationCenter:(UNUserNotificationCenter*)centre
       willPresentNotification:(UNNotification*)notification
         withCompletionHandler:(void (^)(UNNotificationPresentationOptions))fini;
- (void)userNotificationCenter:(UNUserNotificationCenter*)centre
    didReceiveNotificationResponse:(UNNotificationResponse*)reponse
             withCompletionHandler:(void (^)(void))fini;
@end

@interface UNUserNotificationCenter : NSObject
// Comme sur macOS, lève une exception hors d’un paquet.
+ (UNUserNotificationCenter*)currentNotificationCenter;
@property(nonatomic, weak) id<UNUserNotificationCenterDelegate> delegate;
- (void)getNotificationSettingsWithCompletionHandler:(void (^)(UNNotificationSettings*))fini;
- (void)requestAuthorizationWithOptions:(UNAuthorizationOptions)options
                      completionHandler:(void (^)(BOOL, NSError*))fini;
- (void)addNotificationRequest:(UNNotificationRequest*)demande withCompletionHandler:(void (^)(NSError*))fini;
@end
