// Lire et écrire des objets dans un presse-papiers, sur les types que GNUstep 0.29 connaît.

#import <AppKit/AppKit.h>

NSString* const NSPasteboardTypeFileURL = @"public.file-url";
NSString* const NSPasteboardURLReadingFileURLsOnlyKey = @"NSPasteboardURLReadingFileURLsOnlyKey";

@implementation NSPasteboard (Manquant)
- (NSArray*)readObjectsForClasses:(NSArray*)classes options:(NSDictionary*)options {
  NSMutableArray* lus = [NSMutableArray array];
  if (![classes containsObject:[NSURL class]]) return lus;
  if ([self.types containsObject:NSPasteboardTypeFileURL]) {
    for (NSString* adresse in [self propertyListForType:NSPasteboardTypeFileURL])
      [lus addObject:[NSURL URLWithString:adresse]];
    return lus;
  }
  NSURL* adresse = [self.types containsObject:NSURLPboardType] ? [NSURL URLFromPasteboard:self] : nil;
  const BOOL fichiersSeulement = [options[NSPasteboardURLReadingFileURLsOnlyKey] boolValue];
  if (adresse && (adresse.isFileURL || !fichiersSeulement)) [lus addObject:adresse];
  return lus;
}

- (BOOL)writeObjects:(NSArray*)objets {
  NSMutableArray* fichiers = [NSMutableArray array];
  for (id objet in objets)
    if ([objet isKindOfClass:[NSURL class]] && [objet isFileURL]) [fichiers addObject:[objet absoluteString]];
  if (fichiers.count > 0) {
    [self declareTypes:@[ NSPasteboardTypeFileURL ] owner:nil];
    return [self setPropertyList:fichiers forType:NSPasteboardTypeFileURL];
  }
  id premier = objets.firstObject;
  if ([premier isKindOfClass:[NSURL class]]) {
    [self declareTypes:@[ NSURLPboardType ] owner:nil];
    [premier writeToPasteboard:self];
    return YES;
  }
  [self declareTypes:@[ NSStringPboardType ] owner:nil];
  return [self setString:premier forType:NSStringPboardType];
}
@end
