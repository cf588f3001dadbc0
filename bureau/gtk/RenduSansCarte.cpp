#include "bureau/gtk/RenduSansCarte.hpp"

#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>

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

} // namespace

void choisirLeRendu() {
  if (aUneCarte()) return;
  ::setenv("WEBKIT_DISABLE_DMABUF_RENDERER", "1", 0);
  ::setenv("GSK_RENDERER", "cairo", 0);
  sePasserDeGL();
}

} // namespace keltrove::bureau
