// VueWeb : la vue WebKit, réduite à ce que la fenêtre en attend.
//
// WebKit n’a pas d’interface C++ : c’est ici que l’on parle à la sienne, et que l’on sait ce qu’elle a de
// particulier. Ailleurs, ActionsGtk lui emprunte les noms de ses commandes, AProposGtk sa version, et
// DepotGtk et CurseurDeTexte s’adressent à ce que GTK voit d’elle.
//
// La page tourne dans d’autres processus, que WebKit lance pour elle : tout ce qu’on lui demande est
// asynchrone, et sa mort n’est qu’un échec de navigation. Fil principal seulement.
#pragma once

#include "fenetre/Apparence.hpp"
#include "fenetre/VueFenetre.hpp"

#include <functional>
#include <optional>
#include <string>

#include <gtkmm/widget.h>
#include <nlohmann/json_fwd.hpp>
#include <webkit/webkit.h>

namespace keltrove::bureau {

class VueWeb {
public:
  // L’observateur survit à la vue.
  explicit VueWeb(fenetre::ObservateurDeLaVue& observateur);
  VueWeb(const VueWeb&) = delete;
  VueWeb& operator=(const VueWeb&) = delete;
  ~VueWeb();

  // Il vit autant que la vue, et peut se placer où l’on veut.
  Gtk::Widget& widget() { return *widget_; }

  // Comme celles de fenetre::VueFenetre.
  void charger(const std::string& adresse);
  void arreterLeChargement();
  void evaluer(const std::string& expression, std::function<void(std::optional<std::string>)> fini);
  // Exécute le corps d’une fonction dont les arguments sont nommés ; résultat et erreurs sont ignorés.
  void appeler(const char* corps, const nlohmann::json& arguments);
  // Vrai quand un glissement dont WebKit parle à la page y est entré ; faux, tard ou jamais, si elle s’en va.
  void quandUnGlissementEntre(std::function<void(bool)> fini);
  // Ce que l’on voit tant que la page n’a rien peint.
  void peindreLeFond(const fenetre::Apparence::Couleur& couleur);

  // Une commande d’édition de WebKit, sur ce qui a le clavier dans la page.
  void editer(const char* commande);
  // La page le dit plus tard ; faux si elle n’en sait rien.
  void siLEditionPeut(const char* commande, std::function<void(bool)> fini);
  // Un, quand la page n’est ni grossie ni réduite.
  double zoom() const { return webkit_web_view_get_zoom_level(vue_); }

private:
  template <const char* const& canal>
  void ouvrirLeCanal();
  void executer(const std::string& fonction, const char* arguments,
                std::function<void(bool abouti)> fini = nullptr);
  void garderLaPage();
  void preparerLeProgramme();
  void collerAuClavier();
  bool permettre(WebKitPermissionRequest* demande);
  bool decider(WebKitPolicyDecision* decision, WebKitPolicyDecisionType sorte);
  void quandLeChargementChange(WebKitLoadEvent evenement);
  void quandLeChargementEchoue(const GError& erreur);
  void quandLeProcessusSArrete(WebKitWebProcessTerminationReason raison);

  fenetre::ObservateurDeLaVue& observateur_;
  WebKitWebView* vue_ = nullptr;
  Gtk::Widget* widget_ = nullptr;
  bool sollicitee_ = false; // une page lui a été demandée
  // WebKit annonce « terminé » juste après un échec : vrai de l’échec au début du chargement suivant.
  bool rate_ = false;
};

} // namespace keltrove::bureau
