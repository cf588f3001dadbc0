#include "bureau/cocoa/BoucleCocoa.hpp"

#include <utility>

#import <Foundation/Foundation.h>

// Porte une tâche jusqu’à la boucle, qui le tient jusque-là.
@interface RendezVous : NSObject
- (instancetype)initAvecTache:(keltrove::socle::Tache)tache;
- (void)lHeureVient;
@end

@implementation RendezVous {
  keltrove::socle::Tache _tache;
}

- (instancetype)initAvecTache:(keltrove::socle::Tache)tache {
  if ((self = [super init])) _tache = std::move(tache);
  return self;
}

- (void)lHeureVient {
  // La tâche peut annuler son propre rendez-vous, qui la tient.
  const auto tache = _tache;
  tache();
}

@end

namespace keltrove::bureau {
namespace {

constexpr double autantDireJamais = 1e9; // trente ans

socle::Minuteur programmer(double secondes, socle::Tache tache, BOOL repete) {
  if (!(secondes <= autantDireJamais)) return socle::Minuteur([] {});
  NSTimer* minuteur = [NSTimer timerWithTimeInterval:secondes
                                              target:[[RendezVous alloc] initAvecTache:std::move(tache)]
                                            selector:@selector(lHeureVient)
                                            userInfo:nil
                                             repeats:repete];
  [NSRunLoop.mainRunLoop addTimer:minuteur forMode:NSRunLoopCommonModes];
  return socle::Minuteur([minuteur] { [minuteur invalidate]; });
}

} // namespace

void BoucleCocoa::poster(socle::Tache tache) {
  @autoreleasepool { // le fil d’où l’on vient peut n’en avoir aucune
    [[[RendezVous alloc] initAvecTache:std::move(tache)] performSelectorOnMainThread:@selector(lHeureVient)
                                                                          withObject:nil
                                                                       waitUntilDone:NO];
  }
}

socle::Minuteur BoucleCocoa::apres(double secondes, socle::Tache tache) {
  return programmer(secondes, std::move(tache), NO);
}

socle::Minuteur BoucleCocoa::chaque(double secondes, socle::Tache tache) {
  return programmer(secondes, std::move(tache), YES);
}

} // namespace keltrove::bureau
