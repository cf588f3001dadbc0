// VueWeb : la vue WebKit, réduite à ce que la fenêtre en attend.
//
// WebKit n’a pas d’interface C++ : c’est ici, et ici seulement, que l’on parle à la sienne.
#pragma once

#include "fenetre/Apparence.hpp"
#include "fenetre/VueFenetre.hpp"

#include <functional>
#include <optional>
#include <string>

#include <gtkmm/widget.h>
#include <webkit/webkit.h>

namespace keltrove::bureau {

class VueWeb {
public:
  VueWeb();
  VueWeb(const VueWeb&) = delete;
  VueWeb& operator=(const VueWeb&) = delete;
  ~VueWeb();

  Gtk::Widget& widget() { return *widget_; }

  void charger(const std::string& adresse);
  void arreterLeChargement();
  void evaluer(const std::string& expression, std::function<void(std::optional<std::string>)> fini);
  void peindreLeFond(const fenetre::Apparence::Couleur& couleur);

  std::function<void()> quandNavigationAvance;
  std::function<void()> quandNavigationFinie;
  std::function<void(const fenetre::EchecDeNavigation&)> quandNavigationRatee;

private:
  void quandLeChargementChange(WebKitLoadEvent evenement);
  void quandLeChargementEchoue(const GError& erreur);
  void quandLeProcessusSArrete(WebKitWebProcessTerminationReason raison);

  WebKitWebView* vue_ = nullptr;
  Gtk::Widget* widget_ = nullptr;
  // WebKit annonce « terminé » juste après un échec : vrai de l’échec au début du chargement suivant.
  bool rate_ = false;
};

} // namespace keltrove::bureau
