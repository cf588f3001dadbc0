#include "bureau/gtk/BusDeSession.hpp"

#include "socle/Fichiers.hpp"

#include <cstdlib>

#include <gio/gio.h>
#include <sys/stat.h>
#include <unistd.h>

namespace keltrove::bureau {
namespace {

bool repond(const char* adresse) {
  auto* flux = g_dbus_address_get_stream_sync(adresse, nullptr, nullptr, nullptr);
  if (flux == nullptr) return false;
  g_object_unref(flux);
  return true;
}

// La place convenue d’un bus dont aucune variable ne donne l’adresse ; GLib n’y prend que le nôtre.
bool estALaPlaceConvenue() {
  const char* dossier = std::getenv("XDG_RUNTIME_DIR");
  if (dossier == nullptr) return false;
  struct stat bus = {};
  return ::stat(socle::ajouterComposant(dossier, "bus").c_str(), &bus) == 0 && S_ISSOCK(bus.st_mode) &&
         bus.st_uid == ::geteuid();
}

} // namespace

void ecarterUnBusAbsent() {
  constexpr const char* variable = "DBUS_SESSION_BUS_ADDRESS";
  const char* adresse = std::getenv(variable);
  if (adresse != nullptr ? repond(adresse) : estALaPlaceConvenue()) return;
  // Le mot que GLib et WebKit comprennent pour « aucun bus, et n’en lancez pas ».
  ::setenv(variable, "disabled:", 1);
  // GTK 4.8 nomme ses objets accessibles d’après l’adresse de l’application sur ce bus : sans elle, il
  // s’arrête net en fermant sa fenêtre, dès qu’un bus d’accessibilité se trouve par l’écran.
  ::setenv("GTK_A11Y", "none", 1);
}

} // namespace keltrove::bureau
