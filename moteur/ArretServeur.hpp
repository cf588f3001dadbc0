// ArretServeur : l’arrêt poli de ce que nous avons lancé.
//
// SIGTERM seulement, une fois par processus : au serveur, que l’on reconnaît au port qu’il écoute parmi les
// descendants de ce que nous avons lancé, puis au lanceur. Un serveur qui n’écoute pas encore se reconnaît au
// groupe de son lanceur, que les terminaux, eux, ont quitté. Jamais SIGKILL : un serveur qui n’en finit pas
// range peut-être encore sa liste. Construire et attendre() peuvent se faire sur deux fils.
#pragma once

#include "moteur/ArbreProcessus.hpp"
#include "moteur/EtatServeur.hpp"
#include "socle/Horloge.hpp"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace keltrove::moteur {

class ArretServeur {
public:
  // Les phrases que MoteurServeur rend lui-même, faute de serveur à arrêter ou de fil pour l’attendre.
  static constexpr const char* rienAArreter =
      "Le serveur de keltrove continue de tourner : ce n’est pas cette application qui l’a allumé.";
  static constexpr const char* tropLong =
      "Le serveur met du temps à se fermer : je le laisse finir d’écrire sa liste.";

  // Signale aussitôt les serveurs, dans cet ordre, celui où ils ont été lancés. Le dernier est celui en
  // service : la phrase parle de lui seul. La liste n’est pas vide. N’attend pas.
  ArretServeur(const std::vector<ServeurLance>& serveurs, std::shared_ptr<socle::Horloge> horloge);

  // Bloque jusqu’à leur fin à tous, 12 secondes au plus, et rend une phrase pour le journal : fermé, retrouvé
  // nulle part, ou encore en train de finir. Jamais sur un fil qui dessine.
  std::string attendre() const;

private:
  std::optional<Identite> signaler(const ServeurLance& serveur);
  bool unTourneEncore() const;

  std::shared_ptr<socle::Horloge> horloge_;
  double debut_;
  std::optional<Identite> serveur_; // celui en service, s’il a été retrouvé
  std::vector<std::shared_ptr<socle::Processus>> lances_;
  std::vector<Identite> descendants_;
};

} // namespace keltrove::moteur
