// ApplicationGtk : l’application GTK, ses signaux et la poignée de main de la fermeture.
//
// Une seule par session : la relancer ramène sa fenêtre devant. Les modes essai et discret, et une session
// sans bus, font exception.
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

  // À appeler avant run(), une fois la boîte à outils prête.
  void sInscrire();
  // Après run() : quelqu’un nous a relancés pendant la fermeture, et attend une fenêtre.
  bool aRouvrir() const { return aRouvrir_; }

private:
  void on_activate() override;
  void ouvrir();
  void ecouterLesSignaux();
  void demanderLaFermeture();
  void partir();

  const socle::Environnement environnement_;
  bool seFerme_ = false;
  bool aRouvrir_ = false;
  std::unique_ptr<FenetreGtk> fenetre_;
  NotificationsDBus notifications_;
  // Détruit avant la fenêtre et les notifications, dont il se sert.
  std::unique_ptr<app::DelegueApplication> delegue_;
};

} // namespace keltrove::bureau
