// Horloge : le temps qui passe, pour les attentes du moteur.
//
// Une date est un nombre de secondes depuis une origine quelconque. Elle ne recule jamais et ne dépend pas de
// l’heure affichée : changer l’heure de la machine ne raccourcit ni n’allonge aucune attente. Les essais
// donnent une horloge accélérée. Utilisable depuis tout fil.
#pragma once

namespace keltrove::socle {

class Horloge {
public:
  virtual ~Horloge() = default;
  // En secondes ; seule la différence de deux dates a un sens.
  virtual double maintenant() const = 0;
  // Endort le fil appelant cette durée au moins ; jamais le fil principal.
  virtual void dormir(double secondes) = 0;
};

class HorlogeSysteme final : public Horloge {
public:
  double maintenant() const override;
  void dormir(double secondes) override;
};

} // namespace keltrove::socle
