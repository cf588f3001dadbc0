// ApplicationCocoa : l’application AppKit, et la poignée de main de sa fermeture.
#pragma once

#include "app/DelegueApplication.hpp"
#include "bureau/cocoa/NotificationsCocoa.hpp"
#include "bureau/cocoa/SignauxCocoa.hpp"
#include "fenetre/Bureau.hpp"

#include <memory>

#import <AppKit/AppKit.h>

// Rapporte au délégué du comportement ce qu’AppKit demande à celui de l’application.
@interface DelegueApplication : NSObject <NSApplicationDelegate>
- (instancetype)initAvecDelegue:(keltrove::app::DelegueApplication*)delegue;
@end

namespace keltrove::bureau {

class ApplicationCocoa final : fenetre::Bureau {
public:
  ApplicationCocoa(std::shared_ptr<moteur::MoteurServeur> moteur,
                   std::shared_ptr<socle::BoucleEvenements> boucle);

  // Ne revient pas d’ordinaire : AppKit termine le processus.
  void faireTourner();

private:
  std::unique_ptr<fenetre::VueFenetre> creerLaFenetre(fenetre::ObservateurDeLaVue& observateur) override;
  pont::CentreNotifications& notifications() override { return notifications_; }
  void activerLApplication() override;
  void ouvrirDansLeNavigateur(const std::string& adresse, std::function<void()> rate) override;
  void demanderLaFermeture() override;
  void partir() override;

  const sigset_t signaux_ = retenirLesSignaux(); // avant qu’AppKit n’ait de fils à lui
  NSApplication* const application_;             // avant tout ce qui demande à AppKit d’être là
  const std::shared_ptr<socle::BoucleEvenements> boucle_;
  NotificationsCocoa notifications_;
  app::DelegueApplication delegue_;
  DelegueApplication* const delegueDAppKit_; // AppKit ne le tient pas
  socle::Minuteur fermetureDemandee_;
};

} // namespace keltrove::bureau
