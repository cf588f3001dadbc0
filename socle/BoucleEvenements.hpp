// BoucleEvenements : le fil principal, vu du comportement.
//
// Chaque bureau en donne une ; les essais en donnent une dont le temps est virtuel. Le comportement n’attend
// et ne se réveille que par elle : « trois échecs à six secondes » s’essaie donc sans attendre.
//
// Les durées sont en secondes, positives ou nulles. Une tâche ne laisse échapper aucune exception : du
// code C peut l’appeler.
#pragma once

#include <functional>
#include <utility>

namespace keltrove::socle {

using Tache = std::function<void()>;

// Un rendez-vous pris auprès de la boucle. Le détruire l’annule ; l’annuler deux fois ne fait rien. Sa propre
// tâche peut l’annuler ou le remplacer. Fil principal seulement.
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

  // Depuis tout fil : exécute la tâche sur le fil principal, plus tard, dans l’ordre des dépôts. Jamais
  // pendant cet appel, fût-il du fil principal. Une boucle qui ne tourne plus ne l’exécutera pas.
  virtual void poster(Tache tache) = 0;

  // Fil principal seulement. Une durée infinie ou démesurée ne vient jamais. Celui de « chaque » a lieu une
  // première fois au bout de la durée ; un passage en retard décale les suivants, sans se rattraper.
  virtual Minuteur apres(double secondes, Tache tache) = 0;
  virtual Minuteur chaque(double secondes, Tache tache) = 0;
};

} // namespace keltrove::socle
