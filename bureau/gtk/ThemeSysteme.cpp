#include "bureau/gtk/ThemeSysteme.hpp"

#include <glibmm/error.h>
#include <gtkmm/settings.h>

namespace keltrove::bureau {
namespace {

constexpr const char* espace = "org.freedesktop.appearance";
constexpr const char* cle = "color-scheme";
constexpr guint sombre = 1;
constexpr guint clair = 2; // toute autre valeur : sans préférence

// La valeur est emballée une ou deux fois selon l’âge du portail.
void appliquer(Glib::VariantBase valeur, bool sombreSansPreference) {
  while (valeur.is_of_type(Glib::VARIANT_TYPE_VARIANT))
    valeur = Glib::VariantBase::cast_dynamic<Glib::Variant<Glib::VariantBase>>(valeur).get();
  if (!valeur.is_of_type(Glib::VARIANT_TYPE_UINT32)) return;
  const auto choix = Glib::VariantBase::cast_dynamic<Glib::Variant<guint32>>(valeur).get();
  Gtk::Settings::get_default()->property_gtk_application_prefer_dark_theme() =
      choix == sombre || (choix != clair && sombreSansPreference);
}

std::string texte(Glib::VariantContainerBase arguments, gsize rang) {
  const auto valeur = arguments.get_child(rang);
  if (!valeur.is_of_type(Glib::VARIANT_TYPE_STRING)) return "";
  return Glib::VariantBase::cast_dynamic<Glib::Variant<Glib::ustring>>(valeur).get();
}

void quandLePortailSignale(const Glib::ustring& signal, const Glib::VariantContainerBase& recus,
                           bool sombreSansPreference) {
  auto arguments = recus; // giomm ne lit un conteneur que s’il peut le modifier
  if (signal == "SettingChanged" && arguments.get_n_children() == 3 && texte(arguments, 0) == espace &&
      texte(arguments, 1) == cle)
    appliquer(arguments.get_child(2), sombreSansPreference);
}

} // namespace

ThemeSysteme::ThemeSysteme()
    : sombreSansPreference_(Gtk::Settings::get_default()->property_gtk_application_prefer_dark_theme()) {
  Gio::DBus::Proxy::create_for_bus(
      Gio::DBus::BusType::SESSION, "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
      "org.freedesktop.portal.Settings",
      [this](const Glib::RefPtr<Gio::AsyncResult>& resultat) { quandLePortailEstLa(resultat); }, abandon_, {},
      Gio::DBus::ProxyFlags::DO_NOT_LOAD_PROPERTIES | Gio::DBus::ProxyFlags::DO_NOT_AUTO_START);
}

ThemeSysteme::~ThemeSysteme() {
  abandon_->cancel();
}

void ThemeSysteme::quandLePortailEstLa(const Glib::RefPtr<Gio::AsyncResult>& resultat) try {
  portail_ = Gio::DBus::Proxy::create_for_bus_finish(resultat);
  portail_->signal_signal().connect(
      [sansPreference = sombreSansPreference_](const Glib::ustring&, const Glib::ustring& signal,
                                               const Glib::VariantContainerBase& recus) {
        quandLePortailSignale(signal, recus, sansPreference);
      });
  if (!portail_->get_name_owner().empty()) demander();
} catch (const Glib::Error&) {
  // Pas de bus, ou l’application est partie avant la réponse : dans ce cas `this` n’est pas touché.
}

void ThemeSysteme::demander() {
  const auto question = Glib::Variant<std::tuple<Glib::ustring, Glib::ustring>>::create({espace, cle});
  portail_->call(
      "Read",
      [portail = portail_,
       sansPreference = sombreSansPreference_](const Glib::RefPtr<Gio::AsyncResult>& resultat) {
        try {
          auto reponse = portail->call_finish(resultat);
          if (reponse.get_n_children() == 1) appliquer(reponse.get_child(0), sansPreference);
        } catch (const Glib::Error&) {
          // Un portail qui ne connaît pas ce réglage.
        }
      },
      abandon_, question);
}

} // namespace keltrove::bureau
