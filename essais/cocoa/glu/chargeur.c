// Le chargeur : les modules que clang écrit, rendus tels que le libobjc de GCC les veut.
//
// clang n’accepte ARC, les champs dans @implementation et @synthesize implicite qu’avec l’ABI gnustep-1.x ;
// le libobjc de GCC ne connaît que la sienne. Les deux ne diffèrent que par quelques nombres : la version du
// module, celle des protocoles, la taille d’une instance et la place de ses champs, comptées chez clang
// depuis la fin de la classe mère.

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

struct Champ {
  const char* nom;
  const char* type;
  int place;
};
struct Champs {
  int nombre;
  struct Champ liste[];
};
struct Protocoles;
struct Protocole {
  size_t version;
  const char* nom;
  struct Protocoles* parents;
  void* reste[6];
};
struct Protocoles {
  struct Protocoles* suivant;
  long nombre;
  struct Protocole* liste[];
};
struct Classe {
  struct Classe* meta;
  const char* mere;
  const char* nom;
  long version, drapeaux, taille;
  struct Champs* champs;
  void* methodes;
  void* table;
  void* filles;
  void* soeurs;
  struct Protocoles* protocoles;
  void* reserve;
  long abi;
  int** places;
  void* proprietes;
  long fortes, faibles;
};
struct Categorie {
  const char* nom;
  const char* classe;
  void* methodes;
  void* methodesDeClasse;
  struct Protocoles* protocoles;
};
struct Symboles {
  unsigned long selecteurs;
  void* liste;
  unsigned short classes, categories;
  void* definitions[]; // les classes, puis les catégories
};
struct Module {
  unsigned long version, taille;
  const char* nom;
  struct Symboles* symboles;
};

enum {
  VERSION_DE_GCC = 8,
  VERSION_DE_CLANG = 9,
  VERSION_DE_CLANG_AVEC_ARC = 10,
  PROTOCOLE_DE_GCC = 2,
  PROTOCOLE_DE_CLANG = 3,
  MAXIMUM = 4096
};

extern struct Classe* objc_lookUpClass(const char* nom);
extern void __real___objc_exec_class(struct Module* module);

static struct Module* enAttente[MAXIMUM]; // leur classe mère n’est pas encore là
static int nombreEnAttente;
static struct Classe* retouchees[MAXIMUM];
static int nombreDeRetouchees;

static void noter(void** liste, int* nombre, void* element) {
  if (*nombre == MAXIMUM) abort();
  liste[(*nombre)++] = element;
}

static long tailleDe(const char* nom) {
  for (int i = 0; i < nombreDeRetouchees; i++)
    if (!strcmp(retouchees[i]->nom, nom)) return retouchees[i]->taille;
  const struct Classe* classe = objc_lookUpClass(nom);
  return classe ? classe->taille : -1;
}

static void retoucherLesProtocoles(struct Protocoles* liste) {
  for (; liste; liste = liste->suivant)
    for (long i = 0; i < liste->nombre; i++) {
      struct Protocole* protocole = liste->liste[i];
      if (protocole->version != PROTOCOLE_DE_CLANG) continue;
      protocole->version = PROTOCOLE_DE_GCC;
      retoucherLesProtocoles(protocole->parents);
    }
}

// Faux tant que sa classe mère est inconnue.
static int retoucherLaClasse(struct Classe* classe) {
  if (classe->taille > 0) return 1;
  long base = classe->mere ? tailleDe(classe->mere) : 0;
  if (base < 0) return 0;
  base = (base + 7) & ~7L;
  classe->taille = base - classe->taille;
  for (int i = 0; classe->champs && i < classe->champs->nombre; i++) {
    int* place = &classe->champs->liste[i].place;
    *place += (int)base;
    if (classe->places && classe->places[i] && classe->places[i] != place) *classe->places[i] += (int)base;
  }
  noter((void**)retouchees, &nombreDeRetouchees, classe);
  return 1;
}

// Dans un module, une fille peut précéder sa mère.
static int retoucherLesClasses(struct Symboles* symboles) {
  for (int restaient = symboles->classes + 1, restent = symboles->classes; restent;) {
    if (restent == restaient) return 0;
    restaient = restent;
    restent = 0;
    for (int i = 0; i < symboles->classes; i++)
      restent += !retoucherLaClasse(symboles->definitions[i]);
  }
  return 1;
}

static int charger(struct Module* module) {
  struct Symboles* symboles = module->symboles;
  if (!retoucherLesClasses(symboles)) return 0;
  for (int i = 0; i < symboles->classes; i++)
    retoucherLesProtocoles(((struct Classe*)symboles->definitions[i])->protocoles);
  for (int i = 0; i < symboles->categories; i++)
    retoucherLesProtocoles(((struct Categorie*)symboles->definitions[symboles->classes + i])->protocoles);
  module->version = VERSION_DE_GCC;
  module->taille = sizeof *module;
  __real___objc_exec_class(module);
  return 1;
}

void __wrap___objc_exec_class(struct Module* module) {
  if (module->version != VERSION_DE_CLANG && module->version != VERSION_DE_CLANG_AVEC_ARC) {
    __real___objc_exec_class(module);
    return;
  }
  if (!charger(module)) {
    noter((void**)enAttente, &nombreEnAttente, module);
    return;
  }
  for (int avance = 1; avance;) {
    avance = 0;
    for (int i = 0; i < nombreEnAttente; i++)
      if (enAttente[i] && charger(enAttente[i])) {
        enAttente[i] = NULL;
        avance = 1;
      }
  }
}

__attribute__((destructor)) static void direLesRestes(void) {
  for (int i = 0; i < nombreEnAttente; i++)
    if (enAttente[i]) fprintf(stderr, "module jamais chargé : %s\n", enAttente[i]->nom);
}

// L’appel d’une méthode, que clang demande par une case et GCC par une fonction.
typedef void (*Methode)(void);
struct Case {
  void* proprietaire;
  void* reserve;
  const char* types;
  int version;
  Methode methode;
};
extern Methode objc_msg_lookup(void* receveur, void* selecteur);
extern Methode objc_msg_lookup_super(void* receveur, void* selecteur);
static __thread struct Case laCase;

// Un message à nil rend zéro, dans tous les registres de réponse.
extern void essaiRepondreZero(void);
__asm__(".text\n.globl essaiRepondreZero\nessaiRepondreZero:\n"
        " xorl %eax,%eax\n xorl %edx,%edx\n pxor %xmm0,%xmm0\n pxor %xmm1,%xmm1\n ret\n");

struct Case* objc_msg_lookup_sender(void** receveur, void* selecteur, void* emetteur) {
  (void)emetteur;
  laCase.methode = *receveur ? objc_msg_lookup(*receveur, selecteur) : essaiRepondreZero;
  return &laCase;
}
struct Case* objc_slot_lookup_super(void* receveur, void* selecteur) {
  laCase.methode = objc_msg_lookup_super(receveur, selecteur);
  return &laCase;
}

// Dans un fichier .mm, les exceptions et leurs nettoyages sont ceux de C++.
__asm__(".globl __gnustep_objcxx_personality_v0\n.type __gnustep_objcxx_personality_v0,@function\n"
        "__gnustep_objcxx_personality_v0:\n jmp __gxx_personality_v0@PLT\n");
