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

bool ecarterLeBusDeSessionAbsent() {
  constexpr const char* variable = "DBUS_SESSION_BUS_ADDRESS";
  const char* adresse = std::getenv(variable);
  if (adresse != nullptr ? repond(adresse) : estALaPlaceConvenue()) return false;
  // Le mot que GLib et WebKit comprennent pour « aucun bus, et n’en lancez pas ».
  ::setenv(variable, "disabled:", 1);
  return true;
}

// Ce que GTK et WebKit demanderaient, chacun pour soi.
bool offreLAccessibilite() {
  if (const char* adresse = std::getenv("AT_SPI_BUS_ADDRESS")) return *adresse != '\0';
  auto* bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
  if (bus == nullptr) return false;
  auto* reponse =
      g_dbus_connection_call_sync(bus, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", nullptr,
                                  G_VARIANT_TYPE("(s)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
  const bool offerte = reponse != nullptr;
  if (offerte) g_variant_unref(reponse);
  g_object_unref(bus);
  return offerte;
}

} // namespace

void ecarterLesBusAbsents() {
  if (!ecarterLeBusDeSessionAbsent() && offreLAccessibilite()) return;
  // GTK 4.8 nomme ses objets accessibles d’après l’adresse de l’application sur le bus de session : sans
  // elle, il s’arrête net en fermant sa fenêtre, dès qu’un bus d’accessibilité se trouve par l’écran.
  ::setenv("GTK_A11Y", "none", 1);
  ::setenv("WEBKIT_A11Y_BUS_ADDRESS", "", 1);
}

} // namespace keltrove::bureau
