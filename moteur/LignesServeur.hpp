// LignesServeur : les dernières lignes écrites par le serveur, sur ses deux sorties.
//
// Au plus 60 morceaux, chacun d’au plus une lecture du tube (64 Kio) : la mémoire reste bornée quoi que le
// serveur écrive. C’est le détail que montre l’écran d’un problème. Utilisable depuis tout fil.
#pragma once

#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace keltrove::moteur {

class LignesServeur {
public:
  static constexpr std::size_t maximum = 60; // morceaux

  // Un bloc qui n’est pas de l’UTF-8 valide en entier est ignoré. Les blocs ne sont pas recollés : une ligne
  // lue en deux fois compte pour deux.
  void noter(std::string_view bloc);
  // À chaque lancement : le détail d’un échec ne cite jamais l’essai d’avant.
  void vider();

  // Une copie, de la plus ancienne à la plus récente.
  std::vector<std::string> lignes() const;

  // Les lignes jointes, sans les blancs des deux bouts.
  std::string texte() const;

  // Le message de mise à jour le plus récent (« MESSAGE=… ») ; rien s’il n’y en a pas ou s’il est vide.
  std::optional<std::string> messageDeMiseAJour() const;

private:
  mutable std::mutex verrou_;
  std::deque<std::string> lignes_;
};

} // namespace keltrove::moteur
