// Les pannes que l’on ne peut pas provoquer de l’extérieur sans être administrateur ni arrêter la machine : préchargé,
// et seulement dans l’application, il les fait quand un fichier de leur nom paraît dans le dossier KELTROVE_FAUTES.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <spawn.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#define VRAI(nom) ((__typeof__(&nom))dlsym(RTLD_NEXT, #nom))

static int ici(void) {
  static int reponse = -1;
  if (reponse < 0) {
    char chemin[4096];
    const ssize_t lus = readlink("/proc/self/exe", chemin, sizeof chemin - 1);
    chemin[lus > 0 ? lus : 0] = 0;
    const char *nom = strrchr(chemin, '/');
    reponse = nom != NULL && strcmp(nom, "/keltrove") == 0;
  }
  return reponse;
}

static int faute(const char *nom) {
  const char *dossier = getenv("KELTROVE_FAUTES");
  if (dossier == NULL || !ici()) return 0;
  char chemin[4096];
  snprintf(chemin, sizeof chemin, "%s/%s", dossier, nom);
  return access(chemin, F_OK) == 0;
}

// Assez pour le chargeur, trop peu pour la suite.
__attribute__((constructor)) static void limiterLesDescripteurs(void) {
  struct rlimit limite;
  if (!faute("peu-de-descripteurs") || getrlimit(RLIMIT_NOFILE, &limite) != 0) return;
  limite.rlim_cur = 30;
  setrlimit(RLIMIT_NOFILE, &limite);
}

static int sousLaMaison(const char *chemin) {
  const char *maison = getenv("HOME");
  return maison != NULL && strncmp(chemin, maison, strlen(maison)) == 0;
}

static int disqueRefuse(const char *chemin) {
  if (!sousLaMaison(chemin) || !faute("lecture-seule")) return 0;
  errno = EROFS;
  return 1;
}

// Un disque plein laisse créer un fichier, puis n’y laisse rien écrire.
ssize_t write(int descripteur, const void *octets, size_t taille) {
  if (faute("disque-plein")) {
    char lien[64], chemin[4096];
    snprintf(lien, sizeof lien, "/proc/self/fd/%d", descripteur);
    const ssize_t lus = readlink(lien, chemin, sizeof chemin - 1);
    chemin[lus > 0 ? lus : 0] = 0;
    if (sousLaMaison(chemin)) {
      errno = ENOSPC;
      return -1;
    }
  }
  return VRAI(write)(descripteur, octets, taille);
}

#define OUVRIR(nom)                                                                                                    \
  int nom(const char *chemin, int options, ...) {                                                                      \
    va_list suite;                                                                                                     \
    va_start(suite, options);                                                                                          \
    const mode_t droits = va_arg(suite, mode_t);                                                                       \
    va_end(suite);                                                                                                     \
    if ((options & (O_WRONLY | O_RDWR | O_CREAT)) && disqueRefuse(chemin)) return -1;                                  \
    return VRAI(nom)(chemin, options, droits);                                                                         \
  }
OUVRIR(open)
OUVRIR(open64)

int mkstemp(char *modele) { return disqueRefuse(modele) ? -1 : VRAI(mkstemp)(modele); }
int mkstemp64(char *modele) { return disqueRefuse(modele) ? -1 : VRAI(mkstemp64)(modele); }
int mkdir(const char *chemin, mode_t droits) { return disqueRefuse(chemin) ? -1 : VRAI(mkdir)(chemin, droits); }
int rename(const char *de, const char *vers) { return disqueRefuse(vers) ? -1 : VRAI(rename)(de, vers); }

#define LANCER(nom)                                                                                                    \
  int nom(pid_t *pid, const char *chemin, const posix_spawn_file_actions_t *actions, const posix_spawnattr_t *attributs, \
          char *const arguments[], char *const environnement[]) {                                                      \
    if (faute("sans-processus")) return EAGAIN;                                                                        \
    return VRAI(nom)(pid, chemin, actions, attributs, arguments, environnement);                                       \
  }
LANCER(posix_spawn)
LANCER(posix_spawnp)

// Plus de processus, donc plus de fils non plus. Ceux de la boîte à outils, qui interrompt tout sans eux, sont épargnés.
int pthread_create(pthread_t *fil, const pthread_attr_t *attributs, void *(*travail)(void *), void *donnee) {
  Dl_info appelant;
  if (faute("sans-processus") && dladdr(__builtin_return_address(0), &appelant) != 0 &&
      strstr(appelant.dli_fname, "libstdc++") != NULL)
    return EAGAIN;
  return VRAI(pthread_create)(fil, attributs, travail, donnee);
}

static long decalage(void) { return faute("horloge-avance") ? 3600 : faute("horloge-recule") ? -3600 : 0; }

// Le temps que mesurent l’application et ses requêtes s’arrête, puis repart d’où il en était ; celui de la boîte à outils,
// non. Suspendu dès le lancement ou jamais : ailleurs, rien ne ralentit.
static int suspendable;
static pthread_mutex_t verrou = PTHREAD_MUTEX_INITIALIZER;

__attribute__((constructor)) static void suspendre(void) { suspendable = faute("temps-suspendu"); }

static int mesureeParNous(const void *appelant) {
  Dl_info lieu;
  return dladdr(appelant, &lieu) != 0 && (strstr(lieu.dli_fname, "libstdc++") || strstr(lieu.dli_fname, "libcurl"));
}

static struct timespec horsDeLaSuspension(struct timespec instant) {
  static long long rendu, perdu;
  static int suspendu;
  const long long vrai = instant.tv_sec * 1000000000LL + instant.tv_nsec;
  pthread_mutex_lock(&verrou);
  if (rendu == 0) rendu = vrai;
  if (faute("temps-suspendu")) {
    suspendu = 1;
  } else {
    // Il repart à la première mesure d’après : entre les deux, personne ne l’a vu passer.
    if (suspendu) perdu = vrai - rendu;
    suspendu = 0;
    rendu = vrai - perdu;
  }
  const long long mesure = rendu;
  pthread_mutex_unlock(&verrou);
  return (struct timespec){mesure / 1000000000LL, mesure % 1000000000LL};
}

int clock_gettime(clockid_t horloge, struct timespec *instant) {
  const int issue = VRAI(clock_gettime)(horloge, instant);
  if (issue == 0 && horloge == CLOCK_REALTIME) instant->tv_sec += decalage();
  if (issue == 0 && horloge == CLOCK_MONOTONIC && suspendable && mesureeParNous(__builtin_return_address(0)))
    *instant = horsDeLaSuspension(*instant);
  return issue;
}

int gettimeofday(struct timeval *instant, void *zone) {
  const int issue = VRAI(gettimeofday)(instant, zone);
  if (issue == 0) instant->tv_sec += decalage();
  return issue;
}

time_t time(time_t *ou) {
  const time_t instant = VRAI(time)(NULL) + decalage();
  if (ou != NULL) *ou = instant;
  return instant;
}
