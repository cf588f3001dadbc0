// SuiviDuGlissement : un glissement au-dessus de la page, dont on n’apprend ce qu’il porte qu’après son
// entrée, et parfois après son dépôt.
//
// Le bureau rapporte dans l’ordre où tout lui vient ; un départ peut suivre le dépôt, ou manquer. Un survol
// commencé dans la page y finit toujours, et un dépôt est toujours conclu : une source qui attend sans fin
// figerait le programme d’où il vient. Ce qui ne porte pas de fichiers est rendu à la vue web ; lâché avant
// qu’elle ne l’ait lu, il s’y perdrait : le dépôt attend que la page l’ait vu. Fil principal seulement.
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
};

class SuiviDuGlissement {
public:
  struct Effets {
    VueWebDepot::AppelDeLaPage appelerLaPage;
    // Ce qu’elle en aurait reçu s’il était à elle depuis le début : il entre, il part, il est lâché. Une
    // entrée est suivie d’un quandLaPageRepond() ; lâché, c’est à elle de conclure.
    std::function<void()> rendreALaVueWeb;
    std::function<void()> quitterLaVueWeb;
    std::function<void()> deposerDansLaVueWeb;
    std::function<void(bool remis)> conclure;              // le dépôt, une fois ; remis : la page l’a reçu
    std::function<void(std::size_t)> ecarterDesIllisibles; // en dire le nombre à l’utilisateur
  };
  explicit SuiviDuGlissement(Effets effets);

  // Un glissement de plus, dont rien n’est encore su.
  void commencer();
  // Ce qu’il porte, une fois par glissement ; rien du tout en fait celui de la vue web.
  void apprendre(Portes portes);
  // La page a vu entrer ce qui vient d’être rendu à la vue web, ou ne le verra jamais. D’une remise d’avant,
  // ne rien dire ; d’une page qui se tait, interrompre() au bout d’un temps.
  void quandLaPageRepond(bool vu);

  // Ce que le bureau en voit, dans l’ordre où cela lui vient. Un mouvement avant que l’on sache ce qu’il
  // porte n’est que retenu ; un dépôt alors attend apprendre(), et s’il ne porte pas de fichiers que la page
  // l’ait vu.
  void entrer(const Point& point, const MesuresDeLaVue& vue);
  void bouger(const Point& point, const MesuresDeLaVue& vue);
  void sortir();
  void deposer(const Point& point, const MesuresDeLaVue& vue);
  // Il est mort sans le dire, ou ce qu’il attend ne viendra plus.
  void interrompre();
  // L’écran d’attente couvre la page, qui ne reçoit plus rien.
  void couvrir(bool couverte);

  // Il est au-dessus de la vue, quoi qu’il porte ; ou lâché, tant que son dépôt n’est pas conclu.
  bool survole() const { return dessus_; }
  bool estALaVueWeb() const { return rendu_; }
  // Ce que la vue web répond est ce que la page en veut.
  bool laPageLeVoit() const { return vu_; }

private:
  enum class Contenu { inconnu, fichiers, autre };
  void aller(const Point& point, const MesuresDeLaVue& vue);
  void survoler();
  void quitterLaVueWeb();
  void remettre();
  void remettreALaVueWeb();
  bool remettreALaPage();

  const Effets effets_;
  VueWebDepot depot_;
  Contenu contenu_ = Contenu::inconnu;
  Glissement glissement_;
  Portes portes_;
  bool dessus_ = false;
  bool rendu_ = false;
  bool vu_ = false;
  bool lache_ = false; // et l’on attend de savoir quoi, ou que la page l’ait vu
  bool couverte_ = false;
};

} // namespace keltrove::fenetre
