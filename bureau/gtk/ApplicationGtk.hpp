// ApplicationGtk : l’application GTK, ses signaux et la poignée de main de la fermeture.
//
// Une seule par session : la relancer ramène sa fenêtre devant. Les modes essai et discret, et une session
// sans bus, font exception. SIGTERM, SIGINT et SIGHUP prennent le chemin ordinaire de la fermeture, sauf ceux
// que l’application a reçus ignorés. Fil principal seulement.
#pragma once

#include "app/DelegueApplication.hpp"
#include "bureau/gtk/FenetreGtk.hpp"
#include "bureau/gtk/NotificationsDBus.hpp"

#include <memory>

#include <gtkmm/application.h>

namespace keltrove::bureau {

class ApplicationGtk final : public Gtk::Application, fenetre::Bureau {
public:
  // L’environnement est celui d’avant nos propres réglages : les programmes lancés d’ici le reçoivent.
  ApplicationGtk(std::shared_ptr<moteur::MoteurServeur> moteur,
                 std::shared_ptr<socle::BoucleEvenements> boucle, socle::Environnement environnement);
  ~ApplicationGtk() override;

  // À appeler avant run(), une fois la boîte à outils prête. Si celle qui tient le nom ne répond pas,
  // celle-ci se passe de nom, et ouvre sa propre fenêtre.
  void sInscrire();
  // Après run() : quelqu’un nous a relancés pendant la fermeture, et attend une fenêtre.
  bool aRouvrir() const { return delegue_.aRouvrir(); }

private:
  void on_activate() override;
  void ouvrir();
  void ecouterLesSignaux();

  std::unique_ptr<fenetre::VueFenetre> creerLaFenetre(fenetre::ObservateurDeLaVue& observateur) override;
  pont::CentreNotifications& notifications() override { return notifications_; }
  void activerLApplication() override {} // sous Linux, c’est la fenêtre que l’on met devant
  void ouvrirDansLeNavigateur(const std::string& adresse, std::function<void()> rate) override;
  void demanderLaFermeture() override;
  void partir() override;

  const socle::Environnement environnement_;
  FenetreGtk* fenetre_ = nullptr; // au délégué, qui la garde autant que lui
  NotificationsDBus notifications_;
  app::DelegueApplication delegue_;
};

} // namespace keltrove::bureau
