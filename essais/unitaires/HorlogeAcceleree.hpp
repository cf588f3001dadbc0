// HorlogeAcceleree : les attentes du moteur, cinquante fois plus courtes.
//
// Le temps compté n’avance que par dormir(). D’abord de ce qui a vraiment été dormi : ce qui doit arriver a
// le temps d’arriver sur une machine lente aussi, et un essai réussi n’attend pas davantage. Une fois
// pressée, de ce qui devait l’être : un délai qui doit s’épuiser s’épuise vite, en autant de tours que pour
// de vrai.
#pragma once

#include "socle/Horloge.hpp"

#include <chrono>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>

namespace keltrove::essais {

class HorlogeAcceleree final : public socle::Horloge {
public:
  double maintenant() const override {
    const std::lock_guard garde(verrou_);
    return maintenant_;
  }
  void dormir(double secondes) override {
    const double vraiment = secondes / 50;
    do
      std::this_thread::sleep_for(std::chrono::duration<double>(vraiment));
    while (retenue());
    const std::lock_guard garde(verrou_);
    maintenant_ += pressee_ ? secondes : vraiment;
    ++sommeils_;
  }
  int sommeils() const {
    const std::lock_guard garde(verrou_);
    return sommeils_;
  }

  // D’ici que ce soit vrai, le temps ne passe plus du tout.
  void presser(std::function<bool()> quand = [] { return true; }) {
    const std::lock_guard garde(verrou_);
    pressee_ = true;
    quand_ = std::move(quand);
  }
  void patienter() {
    const std::lock_guard garde(verrou_);
    pressee_ = false;
  }

private:
  bool retenue() const {
    const std::lock_guard garde(verrou_);
    return pressee_ && !quand_();
  }

  mutable std::mutex verrou_;
  double maintenant_ = 0;
  int sommeils_ = 0;
  bool pressee_ = false;
  std::function<bool()> quand_;
};

} // namespace keltrove::essais
