#include "bureau/gtk/BoucleGlib.hpp"

#include <cmath>
#include <limits>

#include <glib.h>

namespace keltrove::bureau {
namespace {

enum class Cadence { uneFois, repetee };

struct RendezVous {
  socle::Tache tache;
  Cadence cadence = Cadence::uneFois;
};

gboolean quandLHeureVient(gpointer donnees) {
  // GLib garde le rendez-vous en vie pendant son appel, même si la tâche l’annule.
  const auto& rendezVous = *static_cast<RendezVous*>(donnees);
  rendezVous.tache();
  return rendezVous.cadence == Cadence::repetee ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
}

void attacher(GSource* source, socle::Tache tache, Cadence cadence) {
  g_source_set_callback(source, quandLHeureVient, new RendezVous{std::move(tache), cadence},
                        [](gpointer donnees) { delete static_cast<RendezVous*>(donnees); });
  g_source_attach(source, nullptr);
}

socle::Minuteur programmer(double secondes, socle::Tache tache, Cadence cadence) {
  const double millisecondes = std::ceil(secondes * 1000);
  // GLib compte en 32 bits : au-delà de 49 jours, autant dire jamais.
  if (!(millisecondes <= std::numeric_limits<guint>::max())) return socle::Minuteur([] {});
  auto* source = g_timeout_source_new(static_cast<guint>(millisecondes));
  attacher(source, std::move(tache), cadence);
  return socle::Minuteur([source] {
    g_source_destroy(source);
    g_source_unref(source);
  });
}

} // namespace

void BoucleGlib::poster(socle::Tache tache) {
  auto* source = g_idle_source_new();
  // À priorité égale, GLib garde l’ordre des dépôts ; celle-ci passe avant le dessin, comme un événement.
  g_source_set_priority(source, G_PRIORITY_DEFAULT);
  attacher(source, std::move(tache), Cadence::uneFois);
  g_source_unref(source);
}

socle::Minuteur BoucleGlib::apres(double secondes, socle::Tache tache) {
  return programmer(secondes, std::move(tache), Cadence::uneFois);
}

socle::Minuteur BoucleGlib::chaque(double secondes, socle::Tache tache) {
  return programmer(secondes, std::move(tache), Cadence::repetee);
}

} // namespace keltrove::bureau
