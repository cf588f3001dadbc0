// BoucleEvenements : le fil principal, vu du comportement.
//
// Chaque bureau en donne une (GLib ici) ; les essais en donnent une dont le temps est virtuel.
#pragma once

#include <functional>
#include <utility>

namespace keltrove::socle {

using Tache = std::function<void()>;

// Un rendez-vous pris auprès de la boucle. Le détruire l’annule ; l’annuler deux fois ne fait rien.
class Minuteur {
public:
  Minuteur() = default;
  explicit Minuteur(Tache annulation) : annulation_(std::move(annulation)) {}
  Minuteur(Minuteur&& autre) noexcept : annulation_(std::exchange(autre.annulation_, nullptr)) {}
  Minuteur& operator=(Minuteur&& autre) noexcept {
    if (this != &autre) {
      annuler();
      annulation_ = std::exchange(autre.annulation_, nullptr);
    }
    return *this;
  }
  ~Minuteur() { annuler(); }

  void annuler() {
    if (const auto annulation = std::exchange(annulation_, nullptr)) annulation();
  }
  // Vrai de la prise du rendez-vous à son annulation, qu’il ait eu lieu ou non.
  explicit operator bool() const { return annulation_ != nullptr; }

private:
  Tache annulation_;
};

class BoucleEvenements {
public:
  virtual ~BoucleEvenements() = default;

  // Depuis tout fil : exécute la tâche sur le fil principal, plus tard, dans l’ordre des dépôts.
  virtual void poster(Tache tache) = 0;

  // Fil principal seulement. Une durée infinie ou démesurée ne vient jamais.
  virtual Minuteur apres(double secondes, Tache tache) = 0;
  virtual Minuteur chaque(double secondes, Tache tache) = 0;
};

} // namespace keltrove::socle
