// FilesDeNotifications : une page bavarde n’inonde pas le service de notification.
//
// Un seul envoi à la fois par identifiant ; tant qu’il dure, les suivants attendent et seul le plus récent
// part. Les notifications sans terminal, qui ne se remplacent jamais, partent l’une après l’autre et
// n’attendent qu’à quelques- unes. Retient aussi ce que le service montre encore, pour l’y remplacer. Fil
// principal seulement.
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
  // Envoie au service ; `remplace` est le numéro à remplacer, 0 si aucun. `fini` est appelé une fois, plus
  // tard.
  using Envoi =
      std::function<void(const Notification&, Numero remplace, std::function<void(const Issue&)> fini)>;

  explicit FilesDeNotifications(Envoi envoyer) : envoyer_(std::move(envoyer)) {}

  void ajouter(const Notification& notification, std::function<void(const Remise&)> fini);

  // Le service ne montre plus cette notification.
  void oublier(Numero numero);
  // Le service est parti ou a redémarré : ses numéros ne veulent plus rien dire.
  void toutOublier();
  // Le terminal d’une notification montrée ; rien si elle n’est pas à nous.
  std::optional<std::string> terminalDe(Numero numero) const;

private:
  struct Demande {
    Notification notification;
    std::function<void(const Remise&)> fini;
  };
  struct File {
    bool envoiEnCours = false;
    std::deque<Demande> attente;
  };
  struct Montree {
    std::string identifiant;
    std::string idTerminal;
  };

  void envoyer(const std::string& nom, Demande demande);
  void quandLEnvoiFinit(const std::string& nom, const Demande& demande, const Issue& issue);
  Numero numeroDe(const std::string& identifiant) const;

  Envoi envoyer_;
  std::map<std::string, File> files_;
  std::map<Numero, Montree> montrees_;
  // Un envoi parti avant un redémarrage du service rapporte un numéro qui n’existe plus.
  int epoque_ = 0;
};

} // namespace keltrove::pont
