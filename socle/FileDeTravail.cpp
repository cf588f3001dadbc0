#include "socle/FileDeTravail.hpp"

#include "socle/Fil.hpp"

#include <deque>
#include <mutex>
#include <system_error>
#include <thread>

namespace keltrove::socle {

struct FileDeTravail::Etat {
  std::string nom;
  std::size_t largeur = 1;
  std::mutex verrou;
  std::deque<Tache> taches;
  std::size_t fils = 0;

  void travailler() {
    std::unique_lock garde(verrou);
    while (!taches.empty()) {
      auto tache = std::move(taches.front());
      taches.pop_front();
      garde.unlock();
      tache();
      tache = nullptr;
      garde.lock();
    }
    --fils;
  }
};

FileDeTravail::FileDeTravail(std::string nom, std::size_t largeur) : etat_(std::make_shared<Etat>()) {
  etat_->nom = std::move(nom);
  etat_->largeur = largeur;
}

bool FileDeTravail::deposer(Tache tache) {
  const std::lock_guard garde(etat_->verrou);
  etat_->taches.push_back(std::move(tache));
  if (etat_->fils == etat_->largeur) return true;
  try {
    std::thread([etat = etat_] {
      nommerLeFil(etat->nom);
      etat->travailler();
    }).detach();
    ++etat_->fils;
  } catch (const std::system_error&) {
    // Un fil déjà né prendra la tâche ; sinon personne ne la prendrait jamais.
    if (etat_->fils == 0) {
      etat_->taches.pop_back();
      return false;
    }
  }
  return true;
}

} // namespace keltrove::socle
