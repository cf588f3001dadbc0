// FenetreGtk : la fenêtre native. Sous les menus, de bas en haut : la page, l’écran d’attente, le bandeau.
#pragma once

#include "bureau/gtk/ActionsGtk.hpp"
#include "bureau/gtk/DepotGtk.hpp"
#include "bureau/gtk/EcranGtk.hpp"
#include "bureau/gtk/LecteurDuBureau.hpp"
#include "bureau/gtk/MenusGtk.hpp"
#include "bureau/gtk/ThemeSysteme.hpp"
#include "bureau/gtk/VueWeb.hpp"
#include "fenetre/VueFenetre.hpp"
#include "socle/Environnement.hpp"

#include <gtkmm/applicationwindow.h>
#include <gtkmm/box.h>
#include <gtkmm/label.h>
#include <gtkmm/overlay.h>

namespace keltrove::bureau {

class FenetreGtk final : public Gtk::ApplicationWindow, public fenetre::VueFenetre {
public:
  // L’environnement est celui que reçoit le navigateur du bureau.
  explicit FenetreGtk(socle::Environnement environnement);

  // La fenêtre ne se ferme jamais seule : la question remonte à l’application.
  std::function<void()> quandOnFerme;

  // Une fenêtre que personne n’a vue ne retient rien.
  void retenirLaTaille() const;

  // Le droit de prendre le clavier au prochain mettreDevant, que le bureau refuserait sinon.
  void recevoirLeJeton(const std::string& jeton);

  void dessiner(const fenetre::EtatEcran& etat) override;
  void dessiner(const fenetre::EtatBandeau& etat) override;
  void poserLesMenus(const std::vector<fenetre::Menus::Menu>& menus) override;
  void mettreDevant() override;
  unsigned long mettreDerriere() override;
  void annoncer(const std::string& texte) override;
  void charger(const std::string& adresse) override;
  void arreterLeChargement() override;
  void evaluer(const std::string& expression, std::function<void(std::optional<std::string>)> fini) override;

private:
  void reprendreLaTaille();
  void suivreLeTheme();
  void construireLeBandeau();
  void relierLesVues();
  void suivreLeRegard(Gtk::Window& fenetre);
  void direLeRegard();
  bool on_close_request() override;

  const socle::Environnement environnement_;
  ThemeSysteme theme_;
  LecteurDuBureau lecteur_;
  Gtk::Box pile_{Gtk::Orientation::VERTICAL};
  Gtk::Overlay contenu_;
  VueWeb vueWeb_;
  DepotGtk depot_{vueWeb_};
  MenusGtk menus_{*this};
  ActionsGtk actions_{*this, menus_, vueWeb_};
  EcranGtk ecran_;
  Gtk::Label bandeau_;
  // La réponse du bureau peut arriver après la fenêtre.
  std::shared_ptr<const bool> existe_ = std::make_shared<const bool>(true);
};

} // namespace keltrove::bureau
