// BoucleGlib : la boucle d’événements du comportement, sur le contexte principal de GLib.
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
