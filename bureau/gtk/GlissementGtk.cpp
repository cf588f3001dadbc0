#include "bureau/gtk/GlissementGtk.hpp"

#include "bureau/gtk/DeGLib.hpp"

#include <memory>
#include <utility>

#include <giomm/inputstream.h>
#include <glibmm/bytes.h>
#include <glibmm/error.h>

namespace keltrove::bureau {
namespace {

constexpr const char* listeDAdresses = "text/uri-list"; // RFC 2483
constexpr gsize bouchee = 64UL * 1024;
constexpr std::size_t listeMaximale = 16UL * 1024 * 1024;

bool estCetteMachine(const char* hote) {
  return hote == nullptr || g_ascii_strcasecmp(hote, "localhost") == 0 ||
         g_ascii_strcasecmp(hote, g_get_host_name()) == 0;
}

fenetre::Portes portesPar(const std::string& liste) {
  const std::unique_ptr<char*, decltype(&g_strfreev)> adresses(g_uri_list_extract_uris(liste.c_str()),
                                                               &g_strfreev);
  fenetre::Portes portes;
  for (char** adresse = adresses.get(); *adresse != nullptr; ++adresse) {
    char* hote = nullptr;
    const TexteDeGLib chemin(g_filename_from_uri(*adresse, &hote, nullptr));
    const TexteDeGLib nomDeLHote(hote);
    if (!chemin || !estCetteMachine(hote)) continue;
    if (g_utf8_validate(chemin.get(), -1, nullptr))
      portes.chemins.emplace_back(chemin.get());
    else
      ++portes.illisibles;
  }
  return portes;
}

class Lecture : public std::enable_shared_from_this<Lecture> {
public:
  Lecture(const Glib::RefPtr<Gio::InputStream>& flux, std::function<void(fenetre::Portes)> fini)
      : flux_(flux), fini_(std::move(fini)) {}

  void continuer() {
    flux_->read_bytes_async(bouchee,
                            [moi = shared_from_this()](const Glib::RefPtr<Gio::AsyncResult>& resultat) {
                              moi->recevoir(resultat);
                            });
  }

private:
  void recevoir(const Glib::RefPtr<Gio::AsyncResult>& resultat) {
    try {
      const auto recu = flux_->read_bytes_finish(resultat);
      gsize taille = 0;
      const auto* octets = static_cast<const char*>(recu->get_data(taille));
      if (taille == 0) return fini_(portesPar(liste_));
      liste_.append(octets, taille);
    } catch (const Glib::Error&) {
      return fini_({});
    }
    if (liste_.size() > listeMaximale) return fini_({});
    continuer();
  }

  Glib::RefPtr<Gio::InputStream> flux_;
  std::function<void(fenetre::Portes)> fini_;
  std::string liste_;
};

} // namespace

void lireCeQuIlPorte(GdkDrop* glissement, std::function<void(fenetre::Portes)> fini) {
  if (!gdk_content_formats_contain_mime_type(gdk_drop_get_formats(glissement), listeDAdresses))
    return fini({});
  using Suite = std::function<void(fenetre::Portes)>;
  const char* formats[] = {listeDAdresses, nullptr};
  gdk_drop_read_async(
      glissement, formats, G_PRIORITY_DEFAULT, nullptr,
      [](GObject* source, GAsyncResult* resultat, gpointer donnees) {
        const std::unique_ptr<Suite> suite(static_cast<Suite*>(donnees));
        auto* flux = gdk_drop_read_finish(GDK_DROP(source), resultat, nullptr, nullptr);
        if (flux == nullptr) return (*suite)({});
        std::make_shared<Lecture>(Glib::wrap(flux), std::move(*suite))->continuer();
      },
      new Suite(std::move(fini)));
}

fenetre::MesuresDeLaVue mesurer(GtkWidget* vue, double zoom) {
  // WebKit agrandit la page comme le bureau agrandit son texte, sans le compter dans son zoom.
  constexpr double resolutionOrdinaire = 96 * 1024;
  int resolution = 0;
  g_object_get(gtk_widget_get_settings(vue), "gtk-xft-dpi", &resolution, nullptr);
  return {.hauteur = static_cast<double>(gtk_widget_get_height(vue)),
          .zoom = zoom,
          .agrandissement = resolution > 0 ? resolution / resolutionOrdinaire : 1};
}

} // namespace keltrove::bureau
