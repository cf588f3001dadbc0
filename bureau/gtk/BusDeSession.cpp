#include "bureau/gtk/BusDeSession.hpp"

#include <cstdlib>
#include <gio/gio.h>

namespace keltrove::bureau {

void ecarterUnBusMort() {
  constexpr const char* variable = "DBUS_SESSION_BUS_ADDRESS";
  const char* adresse = std::getenv(variable);
  if (adresse == nullptr) return;
  if (auto* flux = g_dbus_address_get_stream_sync(adresse, nullptr, nullptr, nullptr)) {
    g_object_unref(flux);
    return;
  }
  // Le mot que GLib et WebKit comprennent pour « aucun bus, et n’en lancez pas ».
  ::setenv(variable, "disabled:", 1);
}

} // namespace keltrove::bureau
