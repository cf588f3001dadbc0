#include "bureau/gtk/RenduSansCarte.hpp"

#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>

#include <EGL/egl.h>
#include <gtk/gtk.h>

namespace keltrove::bureau {
namespace {

bool aUneCarte() {
  std::error_code erreur;
  for (std::filesystem::directory_iterator i("/dev/dri", erreur), fin; !erreur && i != fin;
       i.increment(erreur))
    if (std::string_view(i->path().filename().c_str()).starts_with("renderD")) return true;
  return false;
}

// L’ancien réglage serait refusé d’une ligne sur la console, et perdu.
void sePasserDeGL() {
  const bool nouveauReglage = gtk_check_version(4, 16, 0) == nullptr;
  if (nouveauReglage)
    ::setenv("GDK_DISABLE", "gl", 0);
  else
    ::setenv("GDK_DEBUG", "gl-disable", 0);
}

bool vaut(const char* variable, std::string_view valeur) {
  const char* posee = std::getenv(variable);
  return posee != nullptr && posee == valeur;
}

// WebKit, dans ce processus, demande EGL sans rien en faire : Mesa y chargerait LLVM, 16 Mo. libglvnd ne
// cherche qu’une fois les pilotes, ici aucun ; les programmes que WebKit lance, dont celui de la page ne
// démarre pas sans EGL sous Debian 12, ne reçoivent pas cette variable.
void nAvoirAucunPiloteEGL() {
  constexpr auto* variable = "__EGL_VENDOR_LIBRARY_FILENAMES";
  if (std::getenv(variable) != nullptr) return;
  ::setenv(variable, "", 0);
  eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
  ::unsetenv(variable);
}

} // namespace

void choisirLeRendu() {
  if (aUneCarte()) return;
  ::setenv("WEBKIT_DISABLE_DMABUF_RENDERER", "1", 0);
  ::setenv("GSK_RENDERER", "cairo", 0);
  sePasserDeGL();
  // Qui a réglé autrement le dessin de la page ou de la fenêtre se sert d’EGL.
  if (vaut("WEBKIT_DISABLE_DMABUF_RENDERER", "1") && vaut("GSK_RENDERER", "cairo")) nAvoirAucunPiloteEGL();
}

} // namespace keltrove::bureau
