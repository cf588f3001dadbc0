#include "bureau/gtk/EcranPerdu.hpp"

#include <climits>
#include <cstdlib>
#include <utility>

#include <gtk/gtk.h>
#ifdef GDK_WINDOWING_X11
#include <X11/Xlib.h>
#endif
#ifdef GDK_WINDOWING_WAYLAND
#include <gdk/wayland/gdkwayland.h>
#include <poll.h>
#include <wayland-client.h>
#endif
#include <unistd.h>

namespace keltrove::bureau {
namespace {

std::function<void()> aFaire;

// Rien ne revient d’ici : les destructeurs parleraient à un écran qui n’est plus.
[[noreturn]] void partir() {
  if (const auto faire = std::exchange(aFaire, nullptr)) faire();
  ::_exit(EXIT_FAILURE);
}

#ifdef GDK_WINDOWING_WAYLAND
struct Guet {
  GSource source;
  pollfd prise;
};

bool leCompositeurARaccroche(GSource* source) {
  return ::poll(&reinterpret_cast<Guet*>(source)->prise, 1, 0) > 0; // sans rien demander : seules les pannes
}

// Devant une prise raccrochée, GDK termine le programme sans nous, dès qu’il la lit ou y écrit : cette source
// passe avant la sienne, et la regarde à chaque tour avant qu’il n’y touche.
void guetterLeCompositeur(GdkDisplay* ecran) {
  static GSourceFuncs fonctions{
      .prepare = [](GSource* source, int*) -> gboolean { return leCompositeurARaccroche(source); },
      .check = [](GSource* source) -> gboolean { return leCompositeurARaccroche(source); },
      .dispatch = [](GSource*, GSourceFunc, gpointer) -> gboolean { partir(); },
      .finalize = nullptr,
      .closure_callback = nullptr,
      .closure_marshal = nullptr};
  auto* source = g_source_new(&fonctions, sizeof(Guet));
  const int prise = wl_display_get_fd(gdk_wayland_display_get_wl_display(ecran));
  reinterpret_cast<Guet*>(source)->prise = {.fd = prise, .events = 0, .revents = 0};
  g_source_add_unix_fd(source, prise, G_IO_HUP);
  g_source_set_priority(source, INT_MIN);
  const guint numero = g_source_attach(source, nullptr);
  g_source_unref(source);
  // À rang égal, la plus ancienne passe devant, et GTK 4.18 a mis la sienne au premier rang.
  for (guint autre = 1; autre < numero; ++autre) {
    auto* ancienne = g_main_context_find_source_by_id(nullptr, autre);
    if (ancienne != nullptr && g_source_get_priority(ancienne) == INT_MIN)
      g_source_set_priority(ancienne, INT_MIN + 1);
  }
}
#endif

} // namespace

void quandLEcranDisparait(std::function<void()> faire) {
  aFaire = std::move(faire);
#ifdef GDK_WINDOWING_WAYLAND
  if (auto* ecran = gdk_display_get_default(); GDK_IS_WAYLAND_DISPLAY(ecran)) guetterLeCompositeur(ecran);
#endif
#ifdef GDK_WINDOWING_X11
  XSetIOErrorHandler([](Display*) -> int { partir(); });
#endif
}

} // namespace keltrove::bureau
