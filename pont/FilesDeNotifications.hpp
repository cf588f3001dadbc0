// FilesDeNotifications : ce qu’un centre de notifications ajoute à un service qui montre tout, aussitôt.
//
// Une page bavarde n’inonde pas le service : un seul envoi à la fois par terminal ; tant qu’il dure, les
// suivants attendent et seul le plus récent part. Les notifications sans terminal, qui ne se remplacent
// jamais, partent l’une après l’autre et n’attendent qu’à seize : au-delà, la plus ancienne se perd. Ce que
// le service montre encore est retenu, pour l’y remplacer et savoir où mène un clic ; à 256, la plus ancienne
// est oubliée. Fil principal seulement.
#pragma once

#include "pont/CentreNotifications.hpp"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace keltrove::pont {

class FilesDeNotifications {
public:
  using Numero = std::uint32_t; // donné par le service ; jamais nul
  // Ce que l’envoi a donné : le numéro de la notification montrée, ou l’échec.
  struct Issue {
    Remise remise;
    Numero numero = 0;
  };
  // Envoie au service ; `remplace` est le numéro à remplacer, 0 si aucun. `fini` est appelé
  // une fois, plus tard.
  using Envoi =
      std::function<void(const Notification&, Numero remplace, std::function<void(const Issue&)> fini)>;

  explicit FilesDeNotifications(Envoi envoyer) : envoyer_(std::move(envoyer)) {}

  // Sans délégué, ce qui vient pendant que l’application est devant compte pour posé sans être montré. `fini`
  // ne vient pas pour une notification qui s’est perdue dans la file.
  void ajouter(const Notification& notification, bool applicationDevant,
               std::function<void(const Remise&)> fini);

  // Le délégué vit jusqu’à ce que l’on en nomme un autre, ou aucun.
  void deleguerA(DelegueDuCentre* delegue) { delegue_ = delegue; }
  // Un clic sur ce numéro mènerait-il quelque part ?
  bool meneQuelquePart(Numero numero) const;
  // Sans effet sur un numéro que l’on ne connaît pas.
  void cliquer(Numero numero) const;

  // Le service ne montre plus cette notification.
  void oublier(Numero numero);
  // Le service est parti ou a redémarré : ses numéros ne veulent plus rien dire.
  void toutOublier();

private:
  struct Demande {
    Notification notification;
    std::function<void(const Remise&)> fini;
  };
  struct File {
    bool envoiEnCours = false;
    std::deque<Demande> attente;
  };

  void envoyer(Demande demande);
  void quandLEnvoiFinit(const Demande& demande, const Issue& issue);
  Numero numeroDe(const std::string& identifiant) const;

  Envoi envoyer_;
  DelegueDuCentre* delegue_ = nullptr;
  std::map<std::optional<std::string>, File> files_; // une par terminal, et une pour toutes les autres
  std::map<Numero, Notification> montrees_;
  // Un envoi parti avant un redémarrage du service rapporte un numéro qui n’existe plus.
  int epoque_ = 0;
};

} // namespace keltrove::pont
