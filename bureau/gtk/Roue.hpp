// Roue : l’indicateur d’attente.
//
// Celui de GTK est une image vectorielle : l’afficher charge toute une bibliothèque de dessin, au moment même
// où l’application doit s’ouvrir vite. Fil principal seulement.
#pragma once

#include <gtkmm/drawingarea.h>

namespace keltrove::bureau {

class Roue final : public Gtk::DrawingArea {
public:
  Roue();

  // Ne tourne, et ne coûte, que tant qu’on le demande ; jamais pour qui a demandé à son bureau
  // que rien ne bouge.
  void tourner(bool demande);

private:
  void peindre(const Cairo::RefPtr<Cairo::Context>& dessin, int largeur, int hauteur) const;

  guint battement_ = 0;
  double angle_ = 0;
};

} // namespace keltrove::bureau
