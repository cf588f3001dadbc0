// FenetreGtk : la fenêtre native. Sous les menus, de bas en haut : la page, l’écran d’attente, le bandeau.
//
// Le contrat est celui de fenetre::VueFenetre. Elle assemble et transmet ; chaque partie a son fichier. Fil
// principal seulement.
#pragma once

#include "bureau/gtk/ActionsGtk.hpp"
#include "bureau/gtk/DepotGtk.hpp"
#include "bureau/gtk/EcranGtk.hpp"
#include "bureau/gtk/LecteurDuBureau.hpp"
#include "bureau/gtk/MenusGtk.hpp"
#include "bureau/gtk/ThemeSysteme.hpp"
#include "bureau/gtk/VueWeb.hpp"
#include "fenetre/VueFenetre.hpp"
#include "socle/Temoin.hpp"

#include <gtkmm/applicationwindow.h>
#include <gtkmm/box.h>
#include <gtkmm/label.h>
#include <gtkmm/overlay.h>

namespace keltrove::bureau {

class FenetreGtk final : public Gtk::ApplicationWindow, public fenetre::VueFenetre {
public:
  // La fenêtre ne se ferme jamais seule : `fermer` porte la question à l’application. L’observateur vit plus
  // longtemps qu’elle.
  FenetreGtk(fenetre::ObservateurDeLaVue& observateur, std::function<void()> fermer);

  // Pour la prochaine fois, et si elle est agrandie. Une fenêtre que personne n’a vue ne retient rien.
  void retenirLaTaille() const;

  // Le droit de prendre le clavier au prochain mettreDevant, que le bureau refuserait sinon. Il vient d’une
  // notification cliquée, et ne sert qu’une fois.
  void recevoirLeJeton(const std::string& jeton);

  void dessiner(const fenetre::EtatEcran& etat) override;
  void dessiner(const fenetre::EtatBandeau& etat) override;
  void poserLesMenus(const std::vector<fenetre::Menus::Menu>& menus) override;
  void mettreDevant() override;
  std::int64_t mettreDerriere() override;
  void annoncer(const std::string& texte) override;
  void charger(const std::string& adresse) override;
  void arreterLeChargement() override;
  void evaluer(const std::string& expression, std::function<void(std::optional<std::string>)> fini) override;

private:
  void reprendreLaTaille();
  void suivreLeTheme();
  void construireLeBandeau();
  void suivreLeRegard(Gtk::Window& fenetre);
  void direLeRegard();
  bool on_close_request() override;

  fenetre::ObservateurDeLaVue& observateur_;
  const std::function<void()> fermer_;
  ThemeSysteme theme_;
  LecteurDuBureau lecteur_;
  Gtk::Box pile_{Gtk::Orientation::VERTICAL};
  Gtk::Overlay contenu_;
  VueWeb vueWeb_{observateur_};
  DepotGtk depot_{vueWeb_,
                  [this](std::size_t combien) { observateur_.quandDesFichiersSontIllisibles(combien); }};
  MenusGtk menus_{*this};
  ActionsGtk actions_;
  EcranGtk ecran_{observateur_};
  Gtk::Label bandeau_;
  socle::Temoin temoin_; // une boîte peut survivre à la fenêtre
};

} // namespace keltrove::bureau
