// ChargementDeLaPage : la page demandée à la vue. Elle seule sait laquelle, depuis quand, et si
// elle compte encore.
//
// Trois états : toute page compte ; celle qui se charge ne compte plus, mais la suivante oui ; aucune ne
// compte. Un chargement finit, rate, ou passe soixante secondes sans rien recevoir. Abandonné, il n’a plus
// rien à dire : ni son délai, ni sa fin, ni son échec, même tardifs. Une page que personne n’a demandée,
// parce qu’elle s’est rechargée elle-même, compte aussi. Fil principal seulement.
#pragma once

#include "fenetre/VueFenetre.hpp"
#include "socle/BoucleEvenements.hpp"

#include <functional>
#include <optional>
#include <string>

namespace keltrove::fenetre {

class ChargementDeLaPage {
public:
  static constexpr double delaiSansRienRecevoir = 60; // secondes

  // Une page qui compte est là ou rate, qu’on l’ait demandée ou non ; affichée, elle peut encore rater, si le
  // programme qui la dessine meurt. `raison` est une phrase pour l’utilisateur, ou le texte du système.
  struct Issues {
    std::function<void()> quandElleEstLa;
    std::function<void(const std::string& raison)> quandElleRate;
  };

  // La vue et la boucle lui survivent.
  ChargementDeLaPage(VueFenetre& vue, socle::BoucleEvenements& boucle, Issues issues);

  // Remplace ce qui se chargeait. Peut rater pendant l’appel même : l’issue vient alors avant son retour.
  void charger(int port);
  // Arrête ce que charger() a demandé. La page suivante comptera, même demandée par elle-même.
  void abandonner();
  // Arrête ce que charger() a demandé, et plus aucune page ne compte jusqu’à charger() ou abandonner().
  void seTaire();

  // Celui de la dernière page demandée.
  std::optional<int> port() const { return port_; }
  // « http://hôte:port », vide avant toute page.
  std::string origine() const;

  // Ce que rapporte la vue. Avancer repousse le délai ; une annulation n’est pas un échec.
  void commencer();
  void avancer();
  void finir();
  void rater(const EchecDeNavigation& echec);

private:
  enum class Ecoute { toutes, aPartirDeLaSuivante, aucune };
  void arreter(Ecoute ecoute);
  void surveillerLeDelai();

  VueFenetre& vue_;
  socle::BoucleEvenements& boucle_;
  const Issues issues_;
  std::optional<int> port_;
  Ecoute ecoute_ = Ecoute::toutes;
  socle::Minuteur delai_; // présent exactement tant qu’un chargement demandé est en cours
};

} // namespace keltrove::fenetre
