// La vie des objets sous la glu : ce que le bureau tient fortement vit, ce qu’il tient faiblement s’éteint.

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>

#import <Foundation/Foundation.h>

namespace {

int vivants = 0;
int fautes = 0;

void exiger(bool vrai, const char* phrase) {
  if (vrai) return;
  ++fautes;
  fprintf(stderr, "faux : %s\n", phrase);
}

struct Compte {
  Compte() { ++vivants; }
  Compte(const Compte&) { ++vivants; }
  ~Compte() { --vivants; }
};

} // namespace

@interface Tenu : NSObject
@property(copy) NSString* (^dire)(void);
@property(weak) id voisin;
@end
@implementation Tenu {
  std::shared_ptr<std::string> _texte;
  Compte _compte;
}
- (instancetype)init {
  if ((self = [super init])) _texte = std::make_shared<std::string>("vrai membre de C++");
  return self;
}
- (BOOL)aSonTexte {
  return *_texte == "vrai membre de C++";
}
@end

// Une fille déclarée avant que sa mère ne soit chargée, avec ses propres champs.
@interface TenuDePlus : Tenu
@end
@implementation TenuDePlus {
  std::string _sien;
  __weak Tenu* _faible;
}
- (void)viser:(Tenu*)autre {
  _sien = "le sien";
  _faible = autre;
}
- (BOOL)vise {
  return _faible != nil && _sien == "le sien";
}
@end

namespace {

void lesMembresDeCPlusPlusViventEtMeurentAvecLObjet() {
  @autoreleasepool {
    TenuDePlus* objet = [TenuDePlus new];
    exiger(vivants == 1, "le membre de C++ est construit");
    exiger([objet aSonTexte], "le membre de C++ garde sa valeur à côté de ceux de la fille");
  }
  exiger(vivants == 0, "le membre de C++ est détruit");
}

void uneReferenceFaibleSEteint() {
  __weak Tenu* faible = nil;
  TenuDePlus* quiVise = [TenuDePlus new];
  @autoreleasepool {
    Tenu* objet = [Tenu new];
    faible = objet;
    quiVise.voisin = objet;
    [quiVise viser:objet];
    exiger(faible == objet && quiVise.voisin == objet && [quiVise vise], "l’objet tenu se voit");
  }
  exiger(faible == nil, "la variable faible s’est éteinte");
  exiger(quiVise.voisin == nil, "la propriété faible s’est éteinte");
  exiger(![quiVise vise], "le champ faible s’est éteint");
}

void unBlocTientCeQuIlCapture() {
  __weak Tenu* faible = nil;
  NSString* (^bloc)(void) = nil;
  @autoreleasepool {
    Tenu* objet = [Tenu new];
    faible = objet;
    bloc = ^{
      return [objet aSonTexte] ? @"tenu" : @"perdu";
    };
  }
  @autoreleasepool {
    exiger([bloc() isEqualToString:@"tenu"], "le bloc tient ce qu’il capture");
    bloc = nil;
  }
  exiger(faible == nil, "le bloc parti, ce qu’il tenait est parti");
}

void uneFonctionDeCPlusPlusTientCeQuElleCapture() {
  __weak Tenu* faible = nil;
  std::function<bool()> fonction;
  @autoreleasepool {
    Tenu* objet = [Tenu new];
    faible = objet;
    fonction = [objet] { return [objet aSonTexte] == YES; };
  }
  auto copie = fonction;
  fonction = nullptr;
  @autoreleasepool {
    exiger(copie(), "la copie d’une fonction tient aussi");
  }
  copie = nullptr;
  exiger(faible == nil, "la fonction partie, ce qu’elle tenait est parti");
}

void unBlocRangeDansUneProprieteSurvit() {
  @autoreleasepool {
    Tenu* objet = [Tenu new];
    __weak Tenu* faible = objet;
    objet.dire = ^{
      return faible ? @"ici" : @"parti";
    };
    exiger([objet.dire() isEqualToString:@"ici"], "un bloc rangé s’appelle");
  }
  exiger(vivants == 0, "un bloc qui vise faiblement ne retient pas son porteur");
}

void unMessageANilRendZero() {
  Tenu* rien = nil;
  exiger(![rien aSonTexte] && rien.voisin == nil && [(NSString*)nil doubleValue] == 0, "nil répond zéro");
}

void uneExceptionDeCPlusPlusTraverseLesMethodes() {
  bool attrapee = false;
  try {
    @autoreleasepool {
      void (^jeter)(void) = ^{
        const Compte enChemin;
        throw std::string("jetée");
      };
      jeter();
    }
  } catch (const std::string& texte) {
    attrapee = texte == "jetée";
  }
  exiger(attrapee && vivants == 0, "une exception de C++ s’attrape, ses nettoyages faits");
}

} // namespace

int main() {
  @autoreleasepool {
    lesMembresDeCPlusPlusViventEtMeurentAvecLObjet();
    uneReferenceFaibleSEteint();
    unBlocTientCeQuIlCapture();
    uneFonctionDeCPlusPlusTientCeQuElleCapture();
    unBlocRangeDansUneProprieteSurvit();
    unMessageANilRendZero();
    uneExceptionDeCPlusPlusTraverseLesMethodes();
  }
  if (fautes == 0) puts("la vie des objets : tout tient");
  return fautes == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
