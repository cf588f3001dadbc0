// FenetrePrincipale : le contrôleur de la fenêtre unique.
//
// Il tient l’écran d’attente, le bandeau et le pont de notifications, charge la page du serveur, suit sa
// navigation et rend les demandes d’essai à qui l’a créé. Fil principal seulement.
#pragma once

#include "fenetre/EcranAttente.hpp"
#include "fenetre/VueFenetre.hpp"
#include "pont/PontNotifications.hpp"
#include "socle/BoucleEvenements.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace keltrove::fenetre {

class FenetrePrincipale {
public:
  // La vue, le centre et la boucle survivent à la fenêtre.
  FenetrePrincipale(VueFenetre& vue, pont::CentreNotifications& centre, socle::BoucleEvenements& boucle);
  FenetrePrincipale(const FenetrePrincipale&) = delete;
  FenetrePrincipale& operator=(const FenetrePrincipale&) = delete;
  ~FenetrePrincipale();

  // Bouton « Réessayer » et action de menu mènent au même appel.
  std::function<void()> quandOnDemandeUnEssai;

  // Selon les modes : rien en mode essai, derrière en mode discret, devant sinon.
  void afficher();
  void chargerLaPage(int port);
  void afficherBandeau(const std::string& texte, double secondes);
  void rechargerVraiment();

  // À la fermeture : plus rien de ce qui arrive à la page ne change l’écran ni le journal.
  void ignorerLaPage();

  EcranAttente& ecran() { return ecran_; }
  pont::PontNotifications& pont() { return pont_; }

private:
  void surveillerLeDelai();
  void quandLaPageEstLa();
  void sonderLeContenu();
  void noterLeLecteur(const LecteurDEcran& lecteur);
  void direLeLecteur();
  void signalerPageRatee(const EchecDeNavigation& echec);

  VueFenetre& vue_;
  socle::BoucleEvenements& boucle_;
  EcranAttente ecran_;
  pont::PontNotifications pont_;
  std::optional<int> portAffiche_;
  LecteurDEcran lecteur_;
  bool pageIgnoree_ = false;
  socle::Minuteur minuteurBandeau_;
  socle::Minuteur minuteurSonde_;
  socle::Minuteur delaiDeChargement_;
  // Une réponse de la page peut arriver après la fenêtre.
  std::shared_ptr<const bool> existe_ = std::make_shared<const bool>(true);
};

} // namespace keltrove::fenetre
