// BoucleVirtuelle : le fil principal des essais. Son temps n’avance que quand l’essai le demande.
#pragma once

#include "Patience.hpp"
#include "socle/BoucleEvenements.hpp"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>

namespace keltrove::essais {

class BoucleVirtuelle final : public socle::BoucleEvenements {
public:
  void poster(socle::Tache tache) override {
    {
      const std::lock_guard garde(verrou_);
      taches_.push_back(std::move(tache));
    }
    arrivee_.notify_all();
  }

  socle::Minuteur apres(double secondes, socle::Tache tache) override {
    return programmer(secondes, 0, std::move(tache));
  }
  socle::Minuteur chaque(double secondes, socle::Tache tache) override {
    return programmer(secondes, secondes, std::move(tache));
  }

  // Exécute ce qui est posté, sans attendre.
  void vider() {
    while (executerUneTache()) {
    }
  }

  // Exécute ce qui est posté, et les minuteurs échus à mesure que le temps avance.
  void avancer(double secondes) {
    const double but = maintenant_ + secondes;
    vider();
    for (auto prochain = rendezVous_.begin(); prochain != rendezVous_.end() && prochain->first.first <= but;
         prochain = rendezVous_.begin()) {
      maintenant_ = prochain->first.first;
      auto rendezVous = prochain->second;
      const auto numero = prochain->first.second;
      rendezVous_.erase(prochain);
      if (rendezVous.periode > 0) rendezVous_[{maintenant_ + rendezVous.periode, numero}] = rendezVous;
      rendezVous.tache();
      vider();
    }
    maintenant_ = but;
  }

  // Exécute ce que d’autres fils postent jusqu’à ce que la condition soit vraie ; faux à bout de
  // patience. La condition est aussi relue de temps en temps : tout ce que
  // font les autres fils ne passe pas par la boucle.
  bool attendre(const std::function<bool()>& condition) {
    const auto limite = std::chrono::steady_clock::now() + patience;
    do {
      vider();
      if (condition()) return true;
      std::unique_lock garde(verrou_);
      arrivee_.wait_for(garde, std::chrono::milliseconds(5), [this] { return !taches_.empty(); });
    } while (std::chrono::steady_clock::now() < limite);
    return false;
  }

  // Attend que tant de tâches soient postées, sans en exécuter aucune ; faux à bout de patience.
  bool attendreDesTaches(std::size_t nombre) {
    std::unique_lock garde(verrou_);
    return arrivee_.wait_for(garde, patience, [&] { return taches_.size() >= nombre; });
  }

  double maintenant() const { return maintenant_; }
  int tachesExecutees() const { return tachesExecutees_; }
  std::size_t minuteursEnAttente() const { return rendezVous_.size(); }

private:
  struct RendezVous {
    double periode = 0;
    socle::Tache tache;
  };

  socle::Minuteur programmer(double secondes, double periode, socle::Tache tache) {
    const auto numero = ++dernierNumero_;
    rendezVous_[{maintenant_ + secondes, numero}] = {periode, std::move(tache)};
    return socle::Minuteur([this, numero] {
      std::erase_if(rendezVous_, [numero](const auto& entree) { return entree.first.second == numero; });
    });
  }

  bool executerUneTache() {
    socle::Tache tache;
    {
      const std::lock_guard garde(verrou_);
      if (taches_.empty()) return false;
      tache = std::move(taches_.front());
      taches_.pop_front();
    }
    ++tachesExecutees_;
    tache();
    return true;
  }

  std::mutex verrou_; // taches_
  std::condition_variable arrivee_;
  std::deque<socle::Tache> taches_;

  std::map<std::pair<double, int>, RendezVous> rendezVous_;
  int dernierNumero_ = 0;
  double maintenant_ = 0;
  int tachesExecutees_ = 0;
};

} // namespace keltrove::essais
