#include "bureau/gtk/NotificationsDBus.hpp"

#include "bureau/gtk/DeGLib.hpp"
#include "bureau/gtk/ReglagesDuBureau.hpp"
#include "bureau/gtk/Retenu.hpp"
#include "fenetre/Apparence.hpp"

#include <memory>
#include <string_view>
#include <utility>

namespace keltrove::bureau {

using pont::Autorisation;
using pont::Notification;
using pont::Remise;

namespace {

constexpr const char* service = "org.freedesktop.Notifications";
constexpr const char* chemin = "/org/freedesktop/Notifications";
constexpr const char* facteur = "org.freedesktop.DBus";
constexpr const char* cheminDuFacteur = "/org/freedesktop/DBus";
constexpr int patience = 10'000; // millisecondes

constexpr const char* son = "message-new-instant"; // un des noms de sons convenus par freedesktop.org
constexpr const char* actionDuClic = "default";    // le nom que l’interface réserve au clic
constexpr int dureeDuService = -1;                 // au service de choisir

bool contient(GVariant* liste, std::string_view voulu) {
  for (gsize i = 0; i < g_variant_n_children(liste); ++i) {
    const Variant texte(g_variant_get_child_value(liste, i));
    if (voulu == g_variant_get_string(texte.get(), nullptr)) return true;
  }
  return false;
}

bool leServiceManque(const GError& erreur) {
  return g_error_matches(&erreur, G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN) ||
         g_error_matches(&erreur, G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER) ||
         g_error_matches(&erreur, G_IO_ERROR, G_IO_ERROR_CLOSED);
}

Remise remiseDe(const GError& erreur) {
  if (leServiceManque(erreur)) return pont::CentreAbsent{};
  const Erreur copie(g_error_copy(&erreur));
  g_dbus_error_strip_remote_error(copie.get());
  return pont::Refusee{copie->message};
}

bool estUneListeDeTextes(GVariant* reponse) {
  return reponse != nullptr && g_variant_is_of_type(reponse, G_VARIANT_TYPE("(as)"));
}

bool nommeLeService(GVariant* reponse) {
  if (!estUneListeDeTextes(reponse)) return false;
  const Variant noms(g_variant_get_child_value(reponse, 0));
  return contient(noms.get(), service);
}

// Un caractère nul arrêterait le texte, ou romprait la liaison avec le bus.
std::string sansNul(std::string texte) {
  std::erase(texte, '\0');
  return texte;
}

std::string enTexteSimple(const std::string& texte, bool balisageCompris) {
  auto propre = sansNul(texte);
  if (!balisageCompris) return propre;
  const TexteDeGLib protege(g_markup_escape_text(propre.data(), static_cast<gssize>(propre.size())));
  return protege.get();
}

} // namespace

NotificationsDBus::NotificationsDBus(socle::Environnement environnement)
    : environnement_(std::move(environnement)),
      files_([this](const Notification& notification, Files::Numero remplace, auto fini) {
        envoyer(notification, remplace, std::move(fini));
      }) {
  g_bus_get(
      G_BUS_TYPE_SESSION, abandon_,
      [](GObject*, GAsyncResult* resultat, gpointer moi) {
        GError* erreur = nullptr;
        auto* bus = g_bus_get_finish(resultat, &erreur);
        const bool partis = g_error_matches(erreur, G_IO_ERROR, G_IO_ERROR_CANCELLED);
        g_clear_error(&erreur);
        if (!partis) static_cast<NotificationsDBus*>(moi)->quandLeBusEstLa(bus);
      },
      this);
}

NotificationsDBus::~NotificationsDBus() {
  g_cancellable_cancel(abandon_);
  g_object_unref(abandon_);
  if (bus_ == nullptr) return;
  g_bus_unwatch_name(veille_);
  g_dbus_connection_signal_unsubscribe(bus_, abonnement_);
  g_object_unref(bus_);
}

void NotificationsDBus::quandLeBusEstLa(GDBusConnection* bus) {
  bus_ = bus;
  busConnu_ = true;
  if (bus_ != nullptr) ecouter();
  for (const auto& tache : std::exchange(enAttenteDuBus_, {}))
    tache();
}

void NotificationsDBus::unefoisLeBusConnu(std::function<void()> tache) {
  if (busConnu_)
    tache();
  else
    enAttenteDuBus_.push_back(std::move(tache));
}

void NotificationsDBus::ecouter() {
  // Un bus qui s’en va ne doit pas nous emporter.
  g_dbus_connection_set_exit_on_close(bus_, FALSE);
  veille_ = g_bus_watch_name_on_connection(
      bus_, service, G_BUS_NAME_WATCHER_FLAGS_NONE, nullptr,
      [](GDBusConnection*, const char*, gpointer moi) {
        static_cast<NotificationsDBus*>(moi)->files_.toutOublier();
        static_cast<NotificationsDBus*>(moi)->balisage_ = Balisage::inconnu;
      },
      this, nullptr);
  abonnement_ = g_dbus_connection_signal_subscribe(
      bus_, service, service, nullptr, chemin, nullptr, G_DBUS_SIGNAL_FLAGS_NONE,
      [](GDBusConnection*, const char*, const char*, const char*, const char* signal, GVariant* arguments,
         gpointer moi) { static_cast<NotificationsDBus*>(moi)->quandLeServiceSignale(signal, arguments); },
      this, nullptr);
}

void NotificationsDBus::appeler(const char* a, const char* ou, const char* methode, GVariant* arguments,
                                Suite suite) {
  g_dbus_connection_call(
      bus_, a, ou, a, methode, arguments, nullptr, G_DBUS_CALL_FLAGS_NONE, patience, abandon_,
      [](GObject* source, GAsyncResult* resultat, gpointer donnees) {
        const std::unique_ptr<Suite> laSuite(static_cast<Suite*>(donnees));
        GError* brute = nullptr;
        const Variant reponse(g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), resultat, &brute));
        const Erreur erreur(brute);
        if (g_error_matches(brute, G_IO_ERROR, G_IO_ERROR_CANCELLED)) return; // nous ne sommes plus
        (*laSuite)(reponse.get(), erreur.get());
      },
      new Suite(std::move(suite)));
}

void NotificationsDBus::appelerLeService(const char* methode, GVariant* arguments, Suite suite) {
  appeler(service, chemin, methode, arguments, std::move(suite));
}

void NotificationsDBus::lireLesReglages(std::function<void(Autorisation)> fini) {
  unefoisLeBusConnu([this, fini = std::move(fini)] {
    if (bus_ == nullptr) return fini(Autorisation::absente);
    siLeServicePeutRepondre([fini](bool peut) {
      if (!peut) return fini(Autorisation::absente);
      fini(lesNotificationsSontPermises() ? Autorisation::accordee : Autorisation::refusee);
    });
  });
}

// Un service que le bus sait lancer compte pour présent : la première notification le réveillera.
void NotificationsDBus::siLeServicePeutRepondre(const std::function<void(bool)>& fini) {
  appeler(facteur, cheminDuFacteur, "ListNames", nullptr, [this, fini](GVariant* noms, const GError*) {
    if (nommeLeService(noms)) return fini(true);
    appeler(facteur, cheminDuFacteur, "ListActivatableNames", nullptr,
            [fini](GVariant* reveillables, const GError*) { fini(nommeLeService(reveillables)); });
  });
}

void NotificationsDBus::demanderLAutorisation(std::function<void(bool accordee)> fini) {
  // Les bureaux de Linux ne consultent personne : ce qui n’est pas refusé est permis.
  lireLesReglages([fini](Autorisation autorisation) { fini(autorisation == Autorisation::accordee); });
}

void NotificationsDBus::ajouter(const Notification& notification, std::function<void(const Remise&)> fini) {
  unefoisLeBusConnu([this, notification, fini = std::move(fini)] {
    if (bus_ == nullptr) return fini(pont::CentreAbsent{});
    files_.ajouter(notification, applicationDevant && applicationDevant(), fini);
  });
}

void NotificationsDBus::envoyer(const Notification& notification, Files::Numero remplace,
                                std::function<void(const Files::Issue&)> fini) {
  apprendreLeBalisage([this, notification, remplace, fini = std::move(fini)](const GError* erreur) {
    if (erreur != nullptr && leServiceManque(*erreur)) return fini({remiseDe(*erreur)});
    notifier(notification, remplace, fini);
  });
}

void NotificationsDBus::apprendreLeBalisage(const std::function<void(const GError*)>& fini) {
  if (balisage_ != Balisage::inconnu) return fini(nullptr);
  appelerLeService("GetCapabilities", nullptr, [this, fini](GVariant* reponse, const GError* erreur) {
    if (estUneListeDeTextes(reponse)) {
      const Variant capacites(g_variant_get_child_value(reponse, 0));
      balisage_ = contient(capacites.get(), "body-markup") ? Balisage::compris : Balisage::ignore;
    }
    fini(erreur);
  });
}

void NotificationsDBus::notifier(const Notification& notification, Files::Numero remplace,
                                 std::function<void(const Files::Issue&)> fini) {
  GVariantBuilder actions;
  g_variant_builder_init(&actions, G_VARIANT_TYPE("as"));
  g_variant_builder_add(&actions, "s", actionDuClic);
  g_variant_builder_add(&actions, "s", pont::titreDuClic);
  GVariantBuilder indices;
  g_variant_builder_init(&indices, G_VARIANT_TYPE("a{sv}"));
  g_variant_builder_add(&indices, "{sv}", "desktop-entry", g_variant_new_string(KELTROVE_IDENTIFIANT));
  g_variant_builder_add(&indices, "{sv}", "sound-name", g_variant_new_string(son));
  // Sans savoir ce que le service comprend, mieux vaut montrer une esperluette de trop
  // qu’interpréter la page.
  const auto corps = enTexteSimple(notification.corps, balisage_ != Balisage::ignore);
  appelerLeService("Notify",
                   g_variant_new("(susssasa{sv}i)", fenetre::Apparence::nomDeLApplication, remplace,
                                 KELTROVE_IDENTIFIANT, sansNul(notification.titre).c_str(), corps.c_str(),
                                 &actions, &indices, dureeDuService),
                   [fini = std::move(fini)](GVariant* reponse, const GError* erreur) {
                     if (erreur != nullptr) return fini({remiseDe(*erreur)});
                     Files::Numero numero = 0;
                     if (g_variant_is_of_type(reponse, G_VARIANT_TYPE("(u)")))
                       g_variant_get(reponse, "(u)", &numero);
                     fini({pont::Posee{}, numero});
                   });
}

void NotificationsDBus::quandLeServiceSignale(std::string_view signal, GVariant* arguments) {
  Files::Numero numero = 0;
  if (signal == "NotificationClosed" && g_variant_is_of_type(arguments, G_VARIANT_TYPE("(uu)"))) {
    g_variant_get(arguments, "(uu)", &numero, nullptr);
    files_.oublier(numero);
    return;
  }
  if (!g_variant_is_of_type(arguments, G_VARIANT_TYPE("(us)"))) return;
  const char* texte = nullptr;
  g_variant_get(arguments, "(u&s)", &numero, &texte);
  if (signal == "ActivationToken" && quandUnJetonArrive && files_.meneQuelquePart(numero))
    quandUnJetonArrive(texte);
  else if (signal == "ActionInvoked" && std::string_view(texte) == actionDuClic)
    files_.cliquer(numero);
}

void NotificationsDBus::ouvrirLesReglages() {
  ouvrirLesReglagesDeNotification(environnement_);
}

void NotificationsDBus::retenir(const std::string& drapeau) {
  retenirUnDrapeau(drapeau);
}

} // namespace keltrove::bureau
