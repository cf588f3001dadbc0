// ApplicationGtk : l’application GTK, ses signaux et la poignée de main de la fermeture.
#pragma once

#include "app/DelegueApplication.hpp"
#include "bureau/gtk/FenetreGtk.hpp"
#include "bureau/gtk/NotificationsDBus.hpp"

#include <memory>

#include <gtkmm/application.h>

namespace keltrove::bureau {

class ApplicationGtk final : public Gtk::Application {
public:
  // L’environnement est celui d’avant nos propres réglages : les programmes lancés d’ici le reçoivent.
  ApplicationGtk(std::shared_ptr<moteur::MoteurServeur> moteur,
                 std::shared_ptr<socle::BoucleEvenements> boucle, socle::Environnement environnement);
  ~ApplicationGtk() override;

private:
  void on_activate() override;
  void ecouterLesSignaux();
  void demanderLaFermeture();
  void partir();

  const socle::Environnement environnement_;
  std::unique_ptr<FenetreGtk> fenetre_;
  NotificationsDBus notifications_;
  // Détruit avant la fenêtre et les notifications, dont il se sert.
  std::unique_ptr<app::DelegueApplication> delegue_;
};

} // namespace keltrove::bureau
