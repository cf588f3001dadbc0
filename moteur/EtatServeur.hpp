// EtatServeur : ce que le moteur sait du serveur, en une seule valeur, remplacée d’un coup.
//
//   Rien      Rattache si un serveur répond, sinon Lance
//   Lance     Allume quand il répond ; Rattache si un autre répond ; Lance au nouvel essai ; EnArret
//   Allume    EnArret ; au nouvel essai, Rattache s’il répond encore, sinon Lance
//   Rattache  au nouvel essai, Rattache de même, ou Lance
//   EnArret   les essais d’avant n’y changent plus rien
//
// Chaque essai porte un numéro, qui croît : une nouvelle d’un essai dépassé se reconnaît au sien. Rien ici ne
// prend de verrou : MoteurServeur garde la valeur sous le sien.
#pragma once

#include "socle/Processus.hpp"

#include <memory>
#include <optional>
#include <variant>

namespace keltrove::moteur {

// Un serveur que nous avons lancé, l’essai qui l’a fait, et le port où on le sait servir.
struct ServeurLance {
  int essai;
  std::shared_ptr<socle::Processus> processus;
  std::optional<int> port;
};

namespace EtatServeur {

// Aucun essai n’a encore abouti à un serveur ni à un lancement.
struct Rien {};

// Lancé : il n’a pas répondu, ou pas encore ; il a pu mourir depuis. Son port est celui du service précédent.
struct Lance {
  ServeurLance serveur;
};

// Lancé, et il a répondu.
struct Allume {
  ServeurLance serveur;
};

// Il répondait déjà : quel qu’il soit, il ne sera pas signalé. Celui que nous avions lancé avant lui,
// peut-être le même, peut encore mourir.
struct Rattache {
  int port;
  std::optional<ServeurLance> avant;
};

// On lui a demandé de finir : les essais jusqu’à celui-ci ne changent plus rien.
struct EnArret {
  int dernierEssai;
  std::optional<int> port;
};

using Valeur = std::variant<Rien, Lance, Allume, Rattache, EnArret>;

// Celui en service, ou le dernier connu.
std::optional<int> port(const Valeur& etat);
// Le serveur dont il s’agit est à nous, même s’il a fini depuis.
bool estLeNotre(const Valeur& etat);
// Le dernier que nous avons lancé, tant que sa fin est encore une nouvelle.
std::optional<ServeurLance> dernierLance(const Valeur& etat);

} // namespace EtatServeur
} // namespace keltrove::moteur
