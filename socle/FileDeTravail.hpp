// FileDeTravail : des tâches en arrière-plan, sur au plus `largeur` fils à la fois.
//
// Avec une largeur de 1, les tâches se suivent dans l’ordre de leur dépôt. Un fil naît avec la première tâche
// et disparaît avec la dernière. Détruire la file ne les attend pas : quitter l’application n’attend jamais
// un démarrage en cours. Une tâche doit donc posséder tout ce qu’elle touche, et ne laisser échapper aucune
// exception. Copier la file la partage.
#pragma once

#include "socle/BoucleEvenements.hpp"

#include <cstddef>
#include <memory>
#include <string>

namespace keltrove::socle {

class FileDeTravail {
public:
  // `nom` désigne les fils dans les outils de mise au point. `largeur` vaut au moins un.
  FileDeTravail(std::string nom, std::size_t largeur);

  // Depuis tout fil, sans attendre. Faux si le système refuse tout fil : la tâche n’aura pas lieu. S’il en
  // refuse un quand d’autres travaillent déjà, l’un d’eux la prendra.
  [[nodiscard]] bool deposer(Tache tache);

private:
  struct Etat;
  std::shared_ptr<Etat> etat_;
};

} // namespace keltrove::socle
