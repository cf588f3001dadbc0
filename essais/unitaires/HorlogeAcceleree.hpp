// HorlogeAcceleree : les attentes du moteur, cinquante fois plus courtes pour les mêmes secondes comptées.
//
// Le temps compté n’avance que par dormir() : une machine lente ne change pas le nombre de tours.
#pragma once

#include "socle/Horloge.hpp"

#include <atomic>
#include <chrono>
#include <thread>

namespace keltrove::essais {

class HorlogeAcceleree final : public socle::Horloge {
public:
  double maintenant() const override { return maintenant_.load(); }
  void dormir(double secondes) override {
    std::this_thread::sleep_for(std::chrono::duration<double>(secondes / 50));
    maintenant_.store(maintenant_.load() + secondes);
    ++sommeils_;
  }
  int sommeils() const { return sommeils_; }

private:
  std::atomic<double> maintenant_ = 0;
  std::atomic<int> sommeils_ = 0;
};

} // namespace keltrove::essais
