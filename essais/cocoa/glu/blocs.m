// Les blocs, vus d’Objective-C : ce que leur premier mot désigne devient une vraie classe. Se compile sans
// ARC.

#include <Block.h>
#import <Foundation/Foundation.h>

@interface EssaiBloc : NSObject
@end
@implementation EssaiBloc
- (id)copyWithZone:(NSZone*)zone {
  return (id)_Block_copy((const void*)self);
}
- (id)copy {
  return (id)_Block_copy((const void*)self);
}
- (id)retain {
  return (id)_Block_copy((const void*)self);
}
- (oneway void)release {
  _Block_release((const void*)self);
}
- (NSUInteger)retainCount {
  return 1;
}
@end

@interface EssaiBlocGlobal : EssaiBloc
@end
@implementation EssaiBlocGlobal
- (id)copyWithZone:(NSZone*)zone {
  return self;
}
- (id)copy {
  return self;
}
- (id)retain {
  return self;
}
- (oneway void)release {
}
- (id)autorelease {
  return self;
}
@end

// La copie d’un bloc garde la classe de l’original : seul son drapeau dit si elle est sur le tas.
@interface EssaiBlocDePile : EssaiBloc
@end
@implementation EssaiBlocDePile
static int surLeTas(id bloc) {
  return (((int*)bloc)[2] & (1 << 24)) != 0;
}
- (id)retain {
  return surLeTas(self) ? (id)_Block_copy((const void*)self) : self;
}
- (oneway void)release {
  if (surLeTas(self)) _Block_release((const void*)self);
}
@end

__asm__(".globl _NSConcreteStackBlock\n.set _NSConcreteStackBlock, _OBJC_CLASS_EssaiBlocDePile\n"
        ".globl _NSConcreteGlobalBlock\n.set _NSConcreteGlobalBlock, _OBJC_CLASS_EssaiBlocGlobal\n"
        ".globl _NSConcreteMallocBlock\n.set _NSConcreteMallocBlock, _OBJC_CLASS_EssaiBloc\n");
