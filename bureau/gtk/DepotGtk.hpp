// DepotGtk : les glissements au-dessus de la page, rapportés au comportement.
//
// Une cible à nous, posée sur la vue, prend tout ce qui vient d’un autre programme ; celle de WebKit garde ce
// qui est né dans la page, dont les liens et les images se disent aussi listes d’adresses. Ce qu’un
// glissement porte ne se sait qu’après l’avoir lu : si ce ne sont pas des fichiers, notre cible répète à
// WebKit ce qu’elle reçoit. La règle est dans fenetre::SuiviDuGlissement ; ici, seulement ce que GTK en dit
// et attend en retour. Fil principal seulement.
#pragma once

#include "bureau/gtk/VueWeb.hpp"
#include "fenetre/SuiviDuGlissement.hpp"
#include "socle/Temoin.hpp"

#include <cstddef>
#include <functional>

#include <gtk/gtk.h>
#include <sigc++/connection.h>

namespace keltrove::bureau {

class DepotGtk {
public:
  // La vue lui survit. `ecarterDesIllisibles` reçoit combien de fichiers d’un dépôt ont un nom que la
  // page ne peut lire.
  DepotGtk(VueWeb& vueWeb, std::function<void(std::size_t)> ecarterDesIllisibles);
  DepotGtk(const DepotGtk&) = delete;
  DepotGtk& operator=(const DepotGtk&) = delete;
  ~DepotGtk();

  // L’écran d’attente est, ou n’est plus, devant la page.
  void couvrir(bool couverte);

private:
  // Un signal de la cible de WebKit, et qui y répond.
  struct Reponse {
    const char* signal;
    gulong deWebKit = 0;
    gulong notre = 0;
  };

  void garderCelleDeWebKit();
  void repondreAuLieuDeWebKit(Reponse& reponse, GCallback notre);
  template <typename... Resultat>
  void laisserRepondreWebKit(const Reponse& reponse, GdkDrop* glissement, Resultat*... resultat);
  void poserLaNotre();

  bool estANous(GdkDrop* glissement) const;
  bool accepter(GdkDrop* glissement);
  bool accepterPourWebKit(GdkDrop* glissement);
  void quitterWebKit(GdkDrop* glissement);
  void lire();
  void rendreAWebKit();
  GdkDragAction direAWebKit(const char* signal);
  void deposerDansWebKit();
  void guetterLaSource();
  GdkDragAction entrer(double x, double y);
  GdkDragAction bouger(double x, double y);
  void sortir();
  void deposer(double x, double y);
  void attendreLaSuite();
  void conclure(bool remis);
  fenetre::MesuresDeLaVue mesures() const;

  VueWeb& vueWeb_;
  GtkWidget* const vue_;
  fenetre::SuiviDuGlissement suivi_;
  GtkDropTargetAsync* celleDeWebKit_ = nullptr;
  Reponse accord_{.signal = "accept"};
  Reponse depart_{.signal = "drag-leave"};
  GtkDropTargetAsync* laNotre_ = nullptr; // à la vue

  GdkDrop* courant_ = nullptr; // tenu
  int places_ = 0;             // qu’il a dites
  bool lu_ = false;            // ou en train de l’être
  std::size_t remise_ = 0;     // combien de fois un glissement a été rendu à WebKit
  double x_ = 0;
  double y_ = 0;
  sigc::connection guet_;
  socle::Temoin temoin_; // une lecture peut finir après nous
};

} // namespace keltrove::bureau
