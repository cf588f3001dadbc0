// Surveillance : un regard toutes les six secondes sur le serveur en service.
//
// Trois échecs de suite y mettent fin ; un seul succès remet le compte à zéro. La vérification bloque et
// se fait donc en arrière-plan ; son résultat revient sur le fil principal, où vit tout le reste. Un
// regard que le système refuse, faute de fil, compte pour un échec ; un résultat qui revient après
// l’arrêt ne compte pas.
#pragma once

#include "socle/BoucleEvenements.hpp"
#include "socle/FileDeTravail.hpp"

#include <functional>
#include <memory>

namespace keltrove::app {

class Surveillance {
public:
  // `verifier` s’exécute en arrière-plan et doit posséder ce qu’elle touche ; `quandPerdu` vient une fois par
  // surveillance, qui est alors déjà arrêtée.
  Surveillance(std::shared_ptr<socle::BoucleEvenements> boucle, socle::FileDeTravail arrierePlan,
               std::function<bool()> verifier, std::function<void()> quandPerdu);

  // Repart de zéro, même active ; le premier regard a lieu six secondes plus tard.
  void demarrer();
  // Aucun `quandPerdu` ne vient plus, même d’un regard en cours.
  void arreter();
  // Jusqu’à l’arrêt, ou jusqu’à la perte.
  bool active() const;
  // Ceux de la surveillance en cours, ou de la dernière.
  int echecsDaffilee() const;

private:
  struct Compte;
  static void regarder(const std::shared_ptr<Compte>& compte);
  static void appliquer(Compte& compte, bool repond);

  std::shared_ptr<Compte> compte_;
};

} // namespace keltrove::app
