// LecteurDuBureau : dit si un lecteur d’écran tourne sur ce bureau, d’abord puis à chaque changement.
//
// Deux sources, dont l’une suffit : l’état du service d’accessibilité, et le réglage de GNOME. Sans bus ni
// réglage, aucun lecteur ne tourne. Fil principal seulement ; n’attend jamais.
#pragma once

#include <functional>

#include <giomm/dbusproxy.h>
#include <giomm/settings.h>

namespace keltrove::bureau {

class LecteurDuBureau {
public:
  // `quandOnLeSait` ne vient jamais pendant la construction, et peut redire la même chose.
  explicit LecteurDuBureau(std::function<void(bool tourne)> quandOnLeSait);
  LecteurDuBureau(const LecteurDuBureau&) = delete;
  LecteurDuBureau& operator=(const LecteurDuBureau&) = delete;
  ~LecteurDuBureau();

private:
  void quandLeServiceEstConnu(const Glib::RefPtr<Gio::AsyncResult>& resultat);
  bool tourne() const;
  void dire() const;

  const std::function<void(bool tourne)> quandOnLeSait_;
  Glib::RefPtr<Gio::DBus::Proxy> service_;
  Glib::RefPtr<Gio::Settings> reglages_; // vide là où GNOME ne les a pas posés
  Glib::RefPtr<Gio::Cancellable> abandon_ = Gio::Cancellable::create();
};

} // namespace keltrove::bureau
