// EcranGtk : la vue de l’écran d’attente. Elle dessine un EtatEcran et rapporte les deux boutons.
//
// Tout texte se montre : ce qui n’est pas en UTF-8 y est remplacé. Trop haut pour la fenêtre, il défile. Fil
// principal seulement.
#pragma once

#include "bureau/gtk/MenuDeTexte.hpp"
#include "bureau/gtk/Roue.hpp"
#include "bureau/gtk/TexteReplie.hpp"
#include "fenetre/VueFenetre.hpp"

#include <gtkmm/box.h>
#include <gtkmm/button.h>
#include <gtkmm/label.h>
#include <gtkmm/scrolledwindow.h>
#include <gtkmm/textview.h>

namespace keltrove::bureau {

class EcranGtk final : public Gtk::ScrolledWindow {
public:
  // L’observateur survit à l’écran.
  explicit EcranGtk(fenetre::ObservateurDeLaVue& observateur);

  // Ne prend le clavier que si l’utilisateur n’est pas déjà dans le détail ou sur son bouton.
  void dessiner(const fenetre::EtatEcran& etat);

private:
  void construireLeTitre();
  void construireLesBoutons();
  void construireLeDetail();
  void lierEntree();
  void donnerLeClavier(fenetre::EtatEcran::Clavier clavier);

  fenetre::ObservateurDeLaVue& observateur_;
  Roue roue_;
  Gtk::Label titre_;
  TexteReplie phrase_;
  TexteReplie conseil_;
  Gtk::Button boutonReessayer_;
  Gtk::Button boutonDetail_;
  Gtk::TextView detail_;
  MenuDeTexte menuDuDetail_{detail_};
  Gtk::ScrolledWindow cadreDetail_;
  Gtk::Box boutons_;
  Gtk::Box pile_;
};

} // namespace keltrove::bureau
