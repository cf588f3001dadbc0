// SuiviDuGlissement : un glissement au-dessus de la page, dont on n’apprend ce qu’il porte qu’après son
// entrée, et parfois après son dépôt.
//
// Le bureau rapporte dans l’ordre où tout lui vient ; un départ peut suivre le dépôt, ou manquer. Un survol
// commencé dans la page y finit toujours, et un dépôt est toujours conclu : une source qui attend sans fin
// figerait le programme d’où il vient. Fil principal seulement.
#pragma once

#include "fenetre/VueWebDepot.hpp"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace keltrove::fenetre {

// Ce que porte un glissement venu d’un autre programme.
struct Portes {
  std::vector<std::string> chemins; // comme dans Glissement
  // Les fichiers d’ici dont le nom n’est pas en UTF-8 : la page n’en peut rien faire.
  std::size_t illisibles = 0;
  std::string adresses; // chacune sur sa ligne, sans fin de ligne après la dernière
};

class SuiviDuGlissement {
public:
  struct Effets {
    VueWebDepot::AppelDeLaPage appelerLaPage;
    std::function<void()> rendreALaVueWeb;                 // il ne porte pas de fichiers, et la survole déjà
    std::function<void(bool remis)> conclure;              // le dépôt, une fois ; remis : la page l’a reçu
    std::function<void(std::size_t)> ecarterDesIllisibles; // en dire le nombre à l’utilisateur
  };
  explicit SuiviDuGlissement(Effets effets);

  // Un glissement de plus, dont rien n’est encore su.
  void commencer();
  // Ce qu’il porte, une fois par glissement ; rien du tout en fait celui de la vue web.
  void apprendre(Portes portes);
  // Faux dès qu’il est à la vue web.
  bool estANous() const { return contenu_ != Contenu::autre; }

  // Ce que le bureau en voit, dans l’ordre où cela lui vient. Un mouvement avant que l’on sache ce qu’il
  // porte n’est que retenu ; un dépôt alors attend, et se conclut à apprendre().
  void entrer(const Point& point, const MesuresDeLaVue& vue);
  void bouger(const Point& point, const MesuresDeLaVue& vue);
  void sortir();
  void deposer(const Point& point, const MesuresDeLaVue& vue);
  // Il est mort sans le dire : sa source n’est plus là.
  void interrompre();
  // L’écran d’attente couvre la page, qui ne reçoit plus rien.
  void couvrir(bool couverte);

  // Il est au-dessus de la vue, quoi qu’il porte.
  bool survole() const { return dessus_; }

private:
  enum class Contenu { inconnu, fichiers, autre };
  void aller(const Point& point, const MesuresDeLaVue& vue);
  void survoler();
  void remettre();
  bool remettreALaPage();

  const Effets effets_;
  VueWebDepot depot_;
  Contenu contenu_ = Contenu::inconnu;
  Glissement glissement_;
  Portes portes_;
  bool dessus_ = false;
  bool lache_ = false; // et l’on attend de savoir quoi
  bool couverte_ = false;
};

} // namespace keltrove::fenetre
