#include "bureau/gtk/LecteurDuBureau.hpp"

#include <utility>

#include <giomm/error.h>
#include <giomm/settingsschemasource.h>

namespace keltrove::bureau {
namespace {

constexpr const char* schema = "org.gnome.desktop.a11y.applications";
constexpr const char* cle = "screen-reader-enabled";
constexpr const char* propriete = "ScreenReaderEnabled";

// Demander un réglage dont le schéma manque arrête le programme.
Glib::RefPtr<Gio::Settings> reglagesDeGNOME() {
  const auto source = Gio::SettingsSchemaSource::get_default();
  if (!source || !source->lookup(schema, true)) return {};
  return Gio::Settings::create(schema);
}

} // namespace

LecteurDuBureau::LecteurDuBureau(std::function<void(bool tourne)> quandOnLeSait)
    : quandOnLeSait_(std::move(quandOnLeSait)), reglages_(reglagesDeGNOME()) {
  if (reglages_) reglages_->signal_changed(cle).connect([this](const Glib::ustring&) { dire(); });
  Gio::DBus::Proxy::create_for_bus(
      Gio::DBus::BusType::SESSION, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Status",
      [this](const Glib::RefPtr<Gio::AsyncResult>& resultat) { quandLeServiceEstConnu(resultat); }, abandon_,
      {}, Gio::DBus::ProxyFlags::DO_NOT_AUTO_START);
}

LecteurDuBureau::~LecteurDuBureau() {
  abandon_->cancel();
}

void LecteurDuBureau::quandLeServiceEstConnu(const Glib::RefPtr<Gio::AsyncResult>& resultat) try {
  service_ = Gio::DBus::Proxy::create_for_bus_finish(resultat);
  service_->signal_properties_changed().connect([this](const auto&, const auto&) { dire(); });
  service_->property_g_name_owner().signal_changed().connect([this] { dire(); });
  dire();
} catch (const Gio::Error& erreur) {
  // Sans bus, il reste le réglage ; abandonné, `this` n’est plus là.
  if (erreur.code() != Gio::Error::CANCELLED) dire();
}

bool LecteurDuBureau::tourne() const {
  if (reglages_ && reglages_->get_boolean(cle)) return true;
  Glib::Variant<bool> selonLeService;
  if (service_) service_->get_cached_property(selonLeService, propriete);
  return selonLeService && selonLeService.get();
}

void LecteurDuBureau::dire() const {
  quandOnLeSait_(tourne());
}

} // namespace keltrove::bureau
