// DepotGtk : les glissements au-dessus de la page, rapportés au comportement.
//
// Une cible à nous, posée sur la vue, prend les glissements qui portent des fichiers ; celle de WebKit garde
// tous les autres. Ce qu’un glissement porte ne se sait qu’après l’avoir lu : jusque-là il est à nous, puis
// rendu.
#pragma once

#include "bureau/gtk/VueWeb.hpp"
#include "fenetre/VueWebDepot.hpp"

#include <memory>
#include <string>
#include <vector>

#include <gtk/gtk.h>

namespace keltrove::bureau {

class DepotGtk {
public:
  explicit DepotGtk(VueWeb& vueWeb);
  DepotGtk(const DepotGtk&) = delete;
  DepotGtk& operator=(const DepotGtk&) = delete;
  ~DepotGtk();

private:
  enum class Contenu { inconnu, fichiers, autre };

  void garderCelleDeWebKit();
  void poserLaNotre();

  bool estANous(GdkDrop* glissement);
  bool accepterPourWebKit(GdkDrop* glissement);
  void examiner(GdkDrop* glissement);
  void quandOnSaitCeQuIlPorte(std::vector<std::string> chemins);
  void rendreAWebKit();
  GdkDragAction entrer(double x, double y);
  GdkDragAction bouger(double x, double y);
  GdkDragAction operation() const;
  void sortir();
  void deposer(GdkDrop* glissement, double x, double y);
  void remettre(GdkDrop* glissement);
  fenetre::Glissement glissement() const;

  VueWeb& vueWeb_;
  GtkWidget* const vue_;
  fenetre::VueWebDepot depot_;
  GtkDropTargetAsync* celleDeWebKit_ = nullptr;
  gulong accordDeWebKit_ = 0;
  gulong notreAccord_ = 0;

  GdkDrop* courant_ = nullptr; // tenu
  Contenu contenu_ = Contenu::inconnu;
  std::vector<std::string> chemins_;
  fenetre::Point point_;
  bool dessus_ = false;
  bool lache_ = false;
  // Une lecture peut finir après nous.
  std::shared_ptr<const bool> existe_ = std::make_shared<const bool>(true);
};

} // namespace keltrove::bureau
