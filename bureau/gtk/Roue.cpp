#include "bureau/gtk/Roue.hpp"

#include "fenetre/Apparence.hpp"

#include <cmath>
#include <numbers>

#include <gdkmm/frameclock.h>
#include <gtkmm/settings.h>

namespace keltrove::bureau {
namespace {

constexpr int cote = 32;
constexpr int rayons = 12;
constexpr double microsecondesParTour = 1e6;

} // namespace

Roue::Roue() {
  set_content_width(cote);
  set_content_height(cote);
  set_draw_func([this](const Cairo::RefPtr<Cairo::Context>& dessin, int largeur, int hauteur) {
    peindre(dessin, largeur, hauteur);
  });
}

void Roue::tourner(bool demande) {
  // À qui a demandé à son bureau que rien ne bouge, les phrases de l’écran suffisent.
  const bool tourne = demande && get_settings()->property_gtk_enable_animations().get_value();
  if (tourne == (battement_ != 0)) return;
  if (!tourne) {
    remove_tick_callback(battement_);
    battement_ = 0;
    return;
  }
  battement_ = add_tick_callback([this](const Glib::RefPtr<Gdk::FrameClock>& horloge) {
    const double tours = static_cast<double>(horloge->get_frame_time()) / microsecondesParTour;
    // Un rayon à la fois : redessiner à chaque image de l’écran ne se verrait pas.
    const double angle = std::floor((tours - std::floor(tours)) * rayons);
    if (angle != angle_) {
      angle_ = angle;
      queue_draw();
    }
    return true;
  });
}

void Roue::peindre(const Cairo::RefPtr<Cairo::Context>& dessin, int largeur, int hauteur) const {
  const auto& couleur = fenetre::Apparence::Ecran::phrase;
  dessin->translate(largeur / 2.0, hauteur / 2.0);
  dessin->set_line_width(2.6);
  dessin->set_line_cap(Cairo::Context::LineCap::ROUND);
  for (int i = 0; i < rayons; ++i) {
    const double anciennete = std::fmod(angle_ - i + rayons, rayons) / rayons;
    dessin->set_source_rgba(couleur.rouge, couleur.vert, couleur.bleu, 1.0 - 0.85 * anciennete);
    dessin->save();
    dessin->rotate(2 * std::numbers::pi * i / rayons);
    dessin->move_to(0, -cote * 0.25);
    dessin->line_to(0, -cote * 0.44);
    dessin->stroke();
    dessin->restore();
  }
}

} // namespace keltrove::bureau
