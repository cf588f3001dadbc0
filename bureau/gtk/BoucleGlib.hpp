// BoucleGlib : la boucle d’événements du comportement, sur le contexte principal de GLib.
//
// Le contrat est celui de socle::BoucleEvenements. Les durées sont tenues à la milliseconde,
// arrondies au-dessus ; au-delà de quarante-neuf jours, un rendez-vous ne vient jamais. Une tâche
// postée passe avant le dessin.
#pragma once

#include "socle/BoucleEvenements.hpp"

namespace keltrove::bureau {

class BoucleGlib final : public socle::BoucleEvenements {
public:
  void poster(socle::Tache tache) override;
  socle::Minuteur apres(double secondes, socle::Tache tache) override;
  socle::Minuteur chaque(double secondes, socle::Tache tache) override;
};

} // namespace keltrove::bureau
