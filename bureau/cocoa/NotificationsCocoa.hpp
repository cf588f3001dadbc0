// NotificationsCocoa : le centre de notifications du système.
//
// Un programme lancé hors de son paquet n’a pas d’identifiant, et le centre n’est pas fait pour lui : y
// toucher l’arrêterait. Il est alors absent. Le centre répond sur des fils à lui ; tout revient au fil
// principal.
#pragma once

#include "pont/CentreNotifications.hpp"
#include "socle/BoucleEvenements.hpp"

#include <memory>

#import <Foundation/Foundation.h>

@class DelegueDuSysteme;

namespace keltrove::bureau {

class NotificationsCocoa final : public pont::CentreNotifications {
public:
  explicit NotificationsCocoa(std::shared_ptr<socle::BoucleEvenements> boucle);

  void lireLesReglages(std::function<void(pont::Autorisation)> fini) override;
  void demanderLAutorisation(std::function<void(bool accordee)> fini) override;
  void ajouter(const pont::Notification& notification,
               std::function<void(const pont::Remise&)> fini) override;
  void ouvrirLesReglages() override;
  void retenir(const std::string& drapeau) override;
  void deleguerA(pont::DelegueDuCentre* delegue) override;

private:
  const std::shared_ptr<socle::BoucleEvenements> boucle_;
  DelegueDuSysteme* delegue_ = nil; // le centre ne le tient pas
};

} // namespace keltrove::bureau
