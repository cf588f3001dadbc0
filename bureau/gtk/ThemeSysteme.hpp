// ThemeSysteme : la préférence claire ou sombre du bureau, transmise à GTK et, par lui, à la page.
//
// GTK seul ne la connaît pas : elle est donnée par le portail, sous « org.freedesktop.appearance ». Sans
// portail, ou s’il est sans préférence, le thème de GTK reste celui que le bureau nomme. Fil principal
// seulement ; n’attend jamais.
#pragma once

#include <giomm/dbusproxy.h>

namespace keltrove::bureau {

class ThemeSysteme {
public:
  // Le portail répond plus tard : le thème peut changer une fois la fenêtre montrée.
  ThemeSysteme();
  ThemeSysteme(const ThemeSysteme&) = delete;
  ThemeSysteme& operator=(const ThemeSysteme&) = delete;
  ~ThemeSysteme();

private:
  void quandLePortailEstLa(const Glib::RefPtr<Gio::AsyncResult>& resultat);
  void demander();

  const bool sombreSansPreference_; // ce que GTK tient d’ailleurs
  Glib::RefPtr<Gio::DBus::Proxy> portail_;
  Glib::RefPtr<Gio::Cancellable> abandon_ = Gio::Cancellable::create();
};

} // namespace keltrove::bureau
