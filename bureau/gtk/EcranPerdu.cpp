#include "bureau/gtk/EcranPerdu.hpp"

#include <cstdlib>
#include <utility>

#include <gtk/gtk.h>
#ifdef GDK_WINDOWING_X11
#include <X11/Xlib.h>
#endif
#include <unistd.h>

namespace keltrove::bureau {

#ifdef GDK_WINDOWING_X11
namespace {

std::function<void()> aFaire;

int quandXSeTait(Display*) {
  if (const auto faire = std::exchange(aFaire, nullptr)) faire();
  // Xlib n’admet pas de retour d’ici, et les destructeurs parleraient à un écran qui n’est plus.
  ::_exit(EXIT_FAILURE);
}

} // namespace

void quandLEcranDisparait(std::function<void()> faire) {
  aFaire = std::move(faire);
  XSetIOErrorHandler(&quandXSeTait);
}
#else
void quandLEcranDisparait(std::function<void()>) {}
#endif

} // namespace keltrove::bureau
