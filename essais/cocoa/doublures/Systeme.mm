// Les doublures de ce qui sort de l’application : les adresses ouvertes, les annonces, la mise en avant.

#include "EssaiSysteme.hpp"

#import <AppKit/AppKit.h>
#import <objc/runtime.h>

namespace essais {

SystemeNote& systemeNote() {
  static auto* const systeme = new SystemeNote;
  return *systeme;
}

namespace {

BOOL ouvrir(id, SEL, NSURL* adresse) {
  systemeNote().adressesOuvertes.push_back(adresse.absoluteString.UTF8String);
  return !systemeNote().rienNOuvre;
}

void montrerLAPropos(id, SEL, NSDictionary* options) {
  systemeNote().aPropos.emplace_back([[options[NSAboutPanelOptionCredits] string] ?: @"" UTF8String]);
}

void interdireLaFinSubite(id, SEL) {
  ++systemeNote().finsSubitesInterdites;
}

void (*activerDOrigine)(id, SEL, BOOL);
void activer(id application, SEL selecteur, BOOL quoiQuIlEnSoit) {
  ++systemeNote().activations;
  activerDOrigine(application, selecteur, quoiQuIlEnSoit);
}

} // namespace
} // namespace essais

@interface EssaiSysteme : NSObject
@end
@implementation EssaiSysteme
+ (void)load {
  @autoreleasepool {
    method_setImplementation(class_getInstanceMethod([NSWorkspace class], @selector(openURL:)),
                             (IMP)essais::ouvrir);
    method_setImplementation(
        class_getInstanceMethod([NSProcessInfo class], @selector(disableSuddenTermination)),
        (IMP)essais::interdireLaFinSubite);
    method_setImplementation(
        class_getInstanceMethod([NSApplication class], @selector(orderFrontStandardAboutPanelWithOptions:)),
        (IMP)essais::montrerLAPropos);
    essais::activerDOrigine = (void (*)(id, SEL, BOOL))method_setImplementation(
        class_getInstanceMethod([NSApplication class], @selector(activateIgnoringOtherApps:)),
        (IMP)essais::activer);
  }
}
@end

@implementation NSWorkspace (EssaiSysteme)
- (void)openURL:(NSURL*)adresse
        configuration:(NSWorkspaceOpenConfiguration*)configuration
    completionHandler:(void (^)(NSRunningApplication*, NSError*))fini {
  essais::ouvrir(self, _cmd, adresse);
  fini(nil, essais::systemeNote().rienNOuvre ? [NSError errorWithDomain:@"NSCocoaErrorDomain"
                                                                   code:256
                                                               userInfo:nil]
                                             : nil);
}
- (void)openApplicationAtURL:(NSURL*)application
               configuration:(NSWorkspaceOpenConfiguration*)configuration
           completionHandler:(void (^)(NSRunningApplication*, NSError*))fini {
  if (configuration.createsNewApplicationInstance && [application isEqual:NSBundle.mainBundle.bundleURL])
    ++essais::systemeNote().rouvertures;
  fini(nil, nil);
}
@end

@implementation NSWindow (EssaiSysteme)
- (void)toggleFullScreen:(id)source {
  ++essais::systemeNote().pleinsEcrans;
}
@end

// Remplace celle de GNUstep, qui n’en fait rien.
void NSAccessibilityPostNotificationWithUserInfo(id, NSString* nom, NSDictionary* details) {
  if ([nom isEqualToString:NSAccessibilityAnnouncementRequestedNotification])
    essais::systemeNote().annonces.push_back([details[NSAccessibilityAnnouncementKey] UTF8String]);
}
