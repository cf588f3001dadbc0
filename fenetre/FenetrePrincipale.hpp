// FenetrePrincipale : le contrôleur de la fenêtre unique.
//
// Il tient l’écran d’attente, le bandeau, le pont de notifications et le chargement de la page, et rend les
// demandes d’essai à qui l’a créé. Fil principal seulement.
#pragma once

#include "fenetre/ChargementDeLaPage.hpp"
#include "fenetre/EcranAttente.hpp"
#include "fenetre/VueFenetre.hpp"
#include "pont/PontNotifications.hpp"
#include "socle/BoucleEvenements.hpp"

#include <deque>
#include <functional>
#include <memory>
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
  // Une page vient de remplacer l’écran d’attente, qu’on l’ait demandée ou qu’elle se soit rechargée
  // elle-même.
  std::function<void()> quandLaPageEstLa;

  // Selon les modes : rien en mode essai, derrière en mode discret, devant sinon.
  void afficher();
  void chargerLaPage(int port) { chargement_.charger(port); }
  void afficherBandeau(const std::string& texte, double secondes);
  void rechargerVraiment();

  // À la fermeture : plus rien de ce qui arrive à la page ne change l’écran ni le journal.
  void ignorerLaPage();

  ChargementDeLaPage& chargement() { return chargement_; }
  EcranAttente& ecran() { return ecran_; }
  pont::PontNotifications& pont() { return pont_; }

private:
  void montrerLaPage();
  void sonderLeContenu();
  void noterLeLecteur(const LecteurDEcran& lecteur);
  void direLeLecteur();
  void faireLire(const std::optional<std::string>& corps);
  void signalerPageRatee(const std::string& raison);

  VueFenetre& vue_;
  socle::BoucleEvenements& boucle_;
  EcranAttente ecran_;
  pont::PontNotifications pont_;
  LecteurDEcran lecteur_;
  ChargementDeLaPage chargement_;
  bool pageIgnoree_ = false;
  socle::Minuteur minuteurBandeau_;
  std::deque<socle::Minuteur> sondesPrevues_; // une par page finie, dans l’ordre où elles auront lieu
  // Une réponse de la page peut arriver après la fenêtre.
  std::shared_ptr<const bool> existe_ = std::make_shared<const bool>(true);
};

} // namespace keltrove::fenetre
