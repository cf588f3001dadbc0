#include "app/Surveillance.hpp"

#include <utility>

namespace keltrove::app {
namespace {

constexpr double intervalle = 6.0;
constexpr int echecsMaximum = 3;

} // namespace

struct Surveillance::Compte {
  std::shared_ptr<socle::BoucleEvenements> boucle;
  socle::FileDeTravail arrierePlan;
  std::function<bool()> verifier;
  std::function<void()> quandPerdu;
  socle::Minuteur minuteur; // présent exactement tant que la surveillance est active
  int echecsDaffilee = 0;
};

Surveillance::Surveillance(std::shared_ptr<socle::BoucleEvenements> boucle, socle::FileDeTravail arrierePlan,
                           std::function<bool()> verifier, std::function<void()> quandPerdu)
    : compte_(std::make_shared<Compte>(Compte{
          std::move(boucle), std::move(arrierePlan), std::move(verifier), std::move(quandPerdu), {}, 0})) {}

void Surveillance::demarrer() {
  compte_->echecsDaffilee = 0;
  compte_->minuteur = compte_->boucle->chaque(intervalle, [faible = std::weak_ptr(compte_)] {
    if (const auto compte = faible.lock()) regarder(compte);
  });
}

void Surveillance::arreter() {
  compte_->minuteur.annuler();
}

bool Surveillance::active() const {
  return static_cast<bool>(compte_->minuteur);
}

int Surveillance::echecsDaffilee() const {
  return compte_->echecsDaffilee;
}

void Surveillance::regarder(const std::shared_ptr<Compte>& compte) {
  const auto rendre = [boucle = compte->boucle, faible = std::weak_ptr(compte)](bool repond) {
    boucle->poster([faible, repond] {
      if (const auto encoreLa = faible.lock()) appliquer(*encoreLa, repond);
    });
  };
  if (!compte->arrierePlan.deposer([verifier = compte->verifier, rendre] { rendre(verifier()); }))
    rendre(false);
}

void Surveillance::appliquer(Compte& compte, bool repond) {
  // Un résultat qui arrive après l’arrêt ne dit plus rien ; il compterait sinon contre un démarrage en cours.
  if (!compte.minuteur) return;
  compte.echecsDaffilee = repond ? 0 : compte.echecsDaffilee + 1;
  if (compte.echecsDaffilee < echecsMaximum) return;
  compte.minuteur.annuler();
  compte.quandPerdu();
}

} // namespace keltrove::app
