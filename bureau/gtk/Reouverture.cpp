#include "bureau/gtk/Reouverture.hpp"

#include "bureau/gtk/SignauxDuTerminal.hpp"

#include <vector>

#include <gio/gio.h>

namespace keltrove::bureau {
namespace {

// L’aller-retour assure que le bus a vu partir notre nom : la nouvelle venue nous chercherait, sinon.
void rendreLeNom() {
  auto* bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
  if (bus == nullptr) return;
  auto* reponse = g_dbus_connection_call_sync(
      bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ReleaseName",
      g_variant_new("(s)", KELTROVE_IDENTIFIANT), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
  if (reponse != nullptr) g_variant_unref(reponse);
  g_object_unref(bus);
}

} // namespace

void rouvrir(const char* executable, const socle::Environnement& environnement) {
  rendreLeNom();
  std::vector<char*> variables;
  for (const auto& entree : environnement.entrees())
    variables.push_back(const_cast<char*>(entree.c_str()));
  variables.push_back(nullptr);
  const SignauxRendus rendus;
  char* commande[] = {const_cast<char*>(executable), nullptr};
  g_spawn_async(nullptr, commande, variables.data(), G_SPAWN_DEFAULT, nullptr, nullptr, nullptr, nullptr);
}

} // namespace keltrove::bureau
