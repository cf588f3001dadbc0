// BoucleCocoa : la boucle d’événements du comportement, sur celle du fil principal.
//
// Tout y vient dans les modes communs : une fermeture remise à plus tard ne fait tourner la boucle que dans
// le mode modal, et un menu déroulé ou une fenêtre que l’on étire ne doivent rien retenir.
#pragma once

#include "socle/BoucleEvenements.hpp"

namespace keltrove::bureau {

class BoucleCocoa final : public socle::BoucleEvenements {
public:
  void poster(socle::Tache tache) override;
  socle::Minuteur apres(double secondes, socle::Tache tache) override;
  socle::Minuteur chaque(double secondes, socle::Tache tache) override;
};

} // namespace keltrove::bureau
