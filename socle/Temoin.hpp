// Temoin : rend sans effet un appel remis à plus tard dont le demandeur n’existe plus.
//
// Membre de qui demande, déclaré le dernier pour être détruit le premier ; lui et les appels qu’il garde sont
// du même fil. Là où le demandeur vit forcément plus longtemps que l’appel, il n’en faut pas.
#pragma once

#include <memory>
#include <utility>

namespace keltrove::socle {

class Temoin {
public:
  Temoin() = default;
  Temoin(const Temoin&) = delete;
  Temoin& operator=(const Temoin&) = delete;

  // `faire`, ou rien une fois le témoin détruit : cela se regarde à l’appel, non à sa demande.
  template <typename Faire>
  auto garder(Faire faire) const {
    return [existe = std::weak_ptr(existe_), faire = std::move(faire)](auto&&... arguments) {
      if (existe.lock()) faire(std::forward<decltype(arguments)>(arguments)...);
    };
  }

private:
  std::shared_ptr<const bool> existe_ = std::make_shared<const bool>(true);
};

} // namespace keltrove::socle
