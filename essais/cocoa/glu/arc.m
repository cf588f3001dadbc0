// Ce qu’ARC demande à son exécution, et que le libobjc de GCC n’a pas. Lui-même se compile sans ARC.

#include <Block.h>
#import <Foundation/Foundation.h>
#import <objc/runtime.h>
#include <pthread.h>

id objc_retain(id objet) {
  return [objet retain];
}
void objc_release(id objet) {
  [objet release];
}
id objc_autorelease(id objet) {
  return [objet autorelease];
}
id objc_retainAutorelease(id objet) {
  return [[objet retain] autorelease];
}
id objc_retainAutoreleaseReturnValue(id objet) {
  return [[objet retain] autorelease];
}
id objc_autoreleaseReturnValue(id objet) {
  return [objet autorelease];
}
id objc_retainAutoreleasedReturnValue(id objet) {
  return [objet retain];
}
id objc_unsafeClaimAutoreleasedReturnValue(id objet) {
  return objet;
}
id objc_retainBlock(id bloc) {
  return bloc ? (id)_Block_copy((const void*)bloc) : nil;
}
void* objc_autoreleasePoolPush(void) {
  return [NSAutoreleasePool new];
}
void objc_autoreleasePoolPop(void* reserve) {
  [(NSAutoreleasePool*)reserve release];
}

void objc_storeStrong(id* ou, id objet) {
  id ancien = *ou;
  if (ancien == objet) return;
  [objet retain];
  *ou = objet;
  [ancien release];
}

// Les références faibles : pour chaque objet, les cases qui le désignent, vidées quand il meurt.
static pthread_mutex_t verrou;
static NSMapTable* cases;
static IMP deallocDOrigine;

static void viderLesCasesDe(id objet) {
  void* table = NSMapGet(cases, objet);
  if (!table) return;
  NSHashEnumerator enumeration = NSEnumerateHashTable((NSHashTable*)table);
  id* laCase;
  while ((laCase = (id*)NSNextHashEnumeratorItem(&enumeration)))
    *laCase = nil;
  NSEndHashTableEnumeration(&enumeration);
  NSFreeHashTable((NSHashTable*)table);
  NSMapRemove(cases, objet);
}

static void deallocSurveille(id objet, SEL commande) {
  pthread_mutex_lock(&verrou);
  viderLesCasesDe(objet);
  pthread_mutex_unlock(&verrou);
  ((void (*)(id, SEL))deallocDOrigine)(objet, commande);
}

@interface EssaiReferencesFaibles : NSObject
@end
@implementation EssaiReferencesFaibles
+ (void)load {
  pthread_mutexattr_t attributs;
  pthread_mutexattr_init(&attributs);
  pthread_mutexattr_settype(&attributs, PTHREAD_MUTEX_RECURSIVE);
  pthread_mutex_init(&verrou, &attributs);
  cases = NSCreateMapTable(NSNonOwnedPointerMapKeyCallBacks, NSNonOwnedPointerMapValueCallBacks, 64);
  Method dealloc = class_getInstanceMethod([NSObject class], @selector(dealloc));
  deallocDOrigine = method_setImplementation(dealloc, (IMP)deallocSurveille);
}
@end

static void oublier(id* laCase) {
  if (!*laCase) return;
  void* table = NSMapGet(cases, *laCase);
  if (table) NSHashRemove((NSHashTable*)table, laCase);
  *laCase = nil;
}

static void designer(id* laCase, id objet) {
  *laCase = objet;
  if (!objet) return;
  void* table = NSMapGet(cases, objet);
  if (!table) {
    table = NSCreateHashTable(NSNonOwnedPointerHashCallBacks, 2);
    NSMapInsert(cases, objet, table);
  }
  NSHashInsert((NSHashTable*)table, laCase);
}

id objc_initWeak(id* laCase, id objet) {
  pthread_mutex_lock(&verrou);
  designer(laCase, objet);
  pthread_mutex_unlock(&verrou);
  return objet;
}
id objc_storeWeak(id* laCase, id objet) {
  pthread_mutex_lock(&verrou);
  oublier(laCase);
  designer(laCase, objet);
  pthread_mutex_unlock(&verrou);
  return objet;
}
void objc_destroyWeak(id* laCase) {
  pthread_mutex_lock(&verrou);
  oublier(laCase);
  pthread_mutex_unlock(&verrou);
}
id objc_loadWeakRetained(id* laCase) {
  pthread_mutex_lock(&verrou);
  id objet = [*laCase retain];
  pthread_mutex_unlock(&verrou);
  return objet;
}
id objc_loadWeak(id* laCase) {
  return [objc_loadWeakRetained(laCase) autorelease];
}
void objc_copyWeak(id* vers, id* de) {
  pthread_mutex_lock(&verrou);
  designer(vers, *de);
  pthread_mutex_unlock(&verrou);
}
void objc_moveWeak(id* vers, id* de) {
  pthread_mutex_lock(&verrou);
  id objet = *de;
  oublier(de);
  designer(vers, objet);
  pthread_mutex_unlock(&verrou);
}
