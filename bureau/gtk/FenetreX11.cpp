#include "bureau/gtk/FenetreX11.hpp"

#ifdef GDK_WINDOWING_X11
#include <gdk/x11/gdkx.h>
#endif

namespace keltrove::bureau {

// GTK 4.18 déconseille tout ce qui nomme X11, sans rien offrir à la place.
G_GNUC_BEGIN_IGNORE_DEPRECATIONS
std::int64_t effacerLaFenetre([[maybe_unused]] GdkSurface* surface) {
#ifdef GDK_WINDOWING_X11
  if (GDK_IS_X11_SURFACE(surface)) {
    // Une heure nulle dit au gestionnaire de fenêtres de ne pas nous donner le clavier.
    gdk_x11_surface_set_user_time(surface, 0);
    gdk_x11_surface_set_skip_taskbar_hint(surface, TRUE);
    return static_cast<std::int64_t>(gdk_x11_surface_get_xid(surface));
  }
#endif
  return 0;
}
G_GNUC_END_IGNORE_DEPRECATIONS

} // namespace keltrove::bureau
