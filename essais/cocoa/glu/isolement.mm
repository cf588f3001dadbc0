// Chaque application est seule : ni les lancements des autres ni leur presse-papiers ne lui parviennent.
// GNUstep les fait passer par des serveurs que toutes partagent, et qui partent avec la dernière qui s’en
// sert.

#import <AppKit/AppKit.h>
#import <objc/runtime.h>

@interface EssaiPressePapiers : NSPasteboard
@end
@implementation EssaiPressePapiers {
  NSArray* _types;
  NSMutableDictionary* _contenus;
  NSInteger _changements;
}
+ (NSPasteboard*)pasteboardWithName:(NSString*)nom {
  static NSMutableDictionary* const tous = [NSMutableDictionary dictionary];
  if (tous[nom] == nil) tous[nom] = [EssaiPressePapiers new];
  return tous[nom];
}
+ (NSPasteboard*)pasteboardWithUniqueName {
  return [EssaiPressePapiers new];
}
- (instancetype)init {
  if ((self = [super init])) _contenus = [NSMutableDictionary dictionary];
  return self;
}
- (NSArray*)types {
  return _types;
}
- (NSInteger)changeCount {
  return _changements;
}
- (NSInteger)declareTypes:(NSArray*)types owner:(id)proprietaire {
  _types = [types copy];
  [_contenus removeAllObjects];
  return ++_changements;
}
- (NSInteger)addTypes:(NSArray*)types owner:(id)proprietaire {
  _types = [_types arrayByAddingObjectsFromArray:types];
  return _changements;
}
- (NSString*)availableTypeFromArray:(NSArray*)types {
  return [types firstObjectCommonWithArray:_types];
}
- (BOOL)setData:(NSData*)donnees forType:(NSString*)type {
  _contenus[type] = donnees;
  return YES;
}
- (NSData*)dataForType:(NSString*)type {
  return _contenus[type];
}
@end

@interface EssaiIsolement : NSObject
@end
@implementation EssaiIsolement
+ (void)load {
  @autoreleasepool {
    for (NSString* nom in @[ @"pasteboardWithName:", @"pasteboardWithUniqueName" ]) {
      const SEL selecteur = NSSelectorFromString(nom);
      method_setImplementation(
          class_getClassMethod([NSPasteboard class], selecteur),
          method_getImplementation(class_getClassMethod([EssaiPressePapiers class], selecteur)));
    }
    method_setImplementation(
        class_getInstanceMethod(NSClassFromString(@"_GSWorkspaceCenter"), @selector(init)),
        [NSNotificationCenter instanceMethodForSelector:@selector(init)]);
  }
}
@end
