#include "bureau/gtk/X11.hpp"

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

bool aEncoreSaSource([[maybe_unused]] GdkDrop* glissement) {
#ifdef GDK_WINDOWING_X11
  auto* ecran = gdk_drop_get_display(glissement);
  if (GDK_IS_X11_DISPLAY(ecran))
    return XGetSelectionOwner(gdk_x11_display_get_xdisplay(ecran),
                              gdk_x11_get_xatom_by_name_for_display(ecran, "XdndSelection")) != None;
#endif
  return true;
}
G_GNUC_END_IGNORE_DEPRECATIONS

} // namespace keltrove::bureau
