// NotificationsDBus : les notifications du bureau Linux, par org.freedesktop.Notifications.
//
// Rien n’attend : chaque appel est asynchrone et borné en temps. Le service peut arriver, partir ou
// redémarrer pendant que nous tournons ; sans bus ni service, l’autorisation est « absente » et rien ne se
// montre. Une notification dont il ne dit rien en dix secondes compte pour refusée. Fil principal seulement.
#pragma once

#include "pont/CentreNotifications.hpp"
#include "pont/FilesDeNotifications.hpp"
#include "socle/Environnement.hpp"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <gio/gio.h>

namespace keltrove::bureau {

class NotificationsDBus final : public pont::CentreNotifications {
public:
  // L’environnement est celui que reçoivent les programmes lancés d’ici.
  explicit NotificationsDBus(socle::Environnement environnement);
  NotificationsDBus(const NotificationsDBus&) = delete;
  NotificationsDBus& operator=(const NotificationsDBus&) = delete;
  ~NotificationsDBus() override;

  // À poser avant la première notification.
  std::function<bool()> applicationDevant;
  // Le droit de prendre le clavier que le service joint à un clic, juste avant lui ; tous ne le font pas.
  std::function<void(const std::string& jeton)> quandUnJetonArrive;

  void lireLesReglages(std::function<void(pont::Autorisation)> fini) override;
  void demanderLAutorisation(std::function<void(bool accordee)> fini) override;
  void ajouter(const pont::Notification& notification,
               std::function<void(const pont::Remise&)> fini) override;
  void ouvrirLesReglages() override;
  void retenir(const std::string& drapeau) override;
  void deleguerA(pont::DelegueDuCentre* delegue) override { files_.deleguerA(delegue); }

private:
  using Files = pont::FilesDeNotifications;
  // La réponse, ou nul et l’erreur.
  using Suite = std::function<void(GVariant* reponse, const GError* erreur)>;
  enum class Balisage { inconnu, compris, ignore };

  void quandLeBusEstLa(GDBusConnection* bus);
  void unefoisLeBusConnu(std::function<void()> tache);
  void ecouter();
  void appeler(const char* service, const char* chemin, const char* methode, GVariant* arguments,
               Suite suite);
  void appelerLeService(const char* methode, GVariant* arguments, Suite suite);
  void siLeServicePeutRepondre(const std::function<void(bool)>& fini);
  void envoyer(const pont::Notification& notification, Files::Numero remplace,
               std::function<void(const Files::Issue&)> fini);
  void apprendreLeBalisage(const std::function<void(const GError*)>& fini);
  void notifier(const pont::Notification& notification, Files::Numero remplace,
                std::function<void(const Files::Issue&)> fini);
  void quandLeServiceSignale(std::string_view signal, GVariant* arguments);

  socle::Environnement environnement_;
  GCancellable* abandon_ = g_cancellable_new();
  GDBusConnection* bus_ = nullptr;
  bool busConnu_ = false;
  std::vector<std::function<void()>> enAttenteDuBus_;
  guint veille_ = 0;
  guint abonnement_ = 0;
  Balisage balisage_ = Balisage::inconnu;
  Files files_;
};

} // namespace keltrove::bureau
