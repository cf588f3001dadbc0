// Bureau : l’application native, vue du comportement.
//
// Chaque bureau en donne une, qui tient le délégué et lui survit. Elle rapporte et obéit, sans rien décider
// du produit. Fil principal seulement.
#pragma once

#include "fenetre/VueFenetre.hpp"
#include "pont/CentreNotifications.hpp"

#include <functional>
#include <memory>
#include <string>

namespace keltrove::fenetre {

class Bureau {
public:
  // Pas encore montrée. L’observateur survit à la vue.
  virtual std::unique_ptr<VueFenetre> creerLaFenetre(ObservateurDeLaVue& observateur) = 0;
  // Le même à chaque appel ; il vit autant que le bureau.
  virtual pont::CentreNotifications& notifications() = 0;

  // Met l’application devant les autres, là où le système la distingue de ses fenêtres.
  virtual void activerLApplication() = 0;
  // Avec ce que l’utilisateur a choisi pour elle, sans attendre. `rate` vient plus tard si
  // rien ne sait l’ouvrir.
  virtual void ouvrirDansLeNavigateur(const std::string& adresse, std::function<void()> rate) = 0;
  // Prend le chemin de la fermeture, comme l’article « Quitter » : la question au délégué, et
  // l’attente s’il le faut.
  virtual void demanderLaFermeture() = 0;
  // La réponse définitive à une fermeture remise à plus tard : la boucle d’événements s’arrête, le
  // processus se termine.
  virtual void partir() = 0;

protected:
  ~Bureau() = default;
};

} // namespace keltrove::fenetre
