// Ce que le détecteur de fuites voit et qui n’est pas à nous.

// OpenSSL rend l’état propre à chaque fil quand ce fil finit. Le processus n’attend pas ses fils
// d’arrière-plan : l’un d’eux peut finir après l’inventaire des fuites.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libcrypto.so\n";
}
