// Chargée d’avance dans l’application, cette bibliothèque lui cache tout programme nommé node.
#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/syscall.h>
#include <unistd.h>

int access(const char* chemin, int droits) {
  const char* nom = strrchr(chemin, '/');
  if (nom != NULL && strcmp(nom, "/node") == 0) {
    errno = ENOENT;
    return -1;
  }
  return (int)syscall(SYS_faccessat, AT_FDCWD, chemin, droits);
}
