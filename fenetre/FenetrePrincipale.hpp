// FenetrePrincipale : le contrôleur de la fenêtre unique.
//
// Il tient l’écran d’attente, le bandeau, le pont de notifications et le chargement de la page, et rend les
// demandes d’essai à qui l’a créé. Il observe sa vue : tout ce qui arrive à la fenêtre native passe par lui.
// Il ne démarre ni n’arrête aucun serveur. Fil principal seulement.
#pragma once

#include "fenetre/Bureau.hpp"
#include "fenetre/ChargementDeLaPage.hpp"
#include "fenetre/EcranAttente.hpp"
#include "fenetre/VueFenetre.hpp"
#include "pont/PontNotifications.hpp"
#include "socle/BoucleEvenements.hpp"
#include "socle/Temoin.hpp"

#include <deque>
#include <functional>
#include <memory>
#include <string>

namespace keltrove::fenetre {

class FenetrePrincipale final : ObservateurDeLaVue {
public:
  // Crée la fenêtre native, sans la montrer. Le bureau et la boucle lui survivent.
  FenetrePrincipale(Bureau& bureau, socle::BoucleEvenements& boucle);
  FenetrePrincipale(const FenetrePrincipale&) = delete;
  FenetrePrincipale& operator=(const FenetrePrincipale&) = delete;

  // Bouton « Réessayer » et action de menu mènent au même appel.
  std::function<void()> quandOnDemandeUnEssai;
  // Une page vient de remplacer l’écran d’attente, qu’on l’ait demandée ou qu’elle se soit
  // rechargée elle-même.
  std::function<void()> quandLaPageEstLa;

  // Selon les modes : rien en mode essai, derrière en mode discret, devant sinon.
  void afficher();
  // L’application et sa fenêtre devant les autres.
  void ramener();
  // L’écran d’attente reste jusqu’à ce que la page soit là ; ratée, il l’explique et propose de réessayer.
  void chargerLaPage(int port) { chargement_.charger(port); }
  // Un texte bref au bas de la fenêtre. Il remplace celui qui s’y montrait, et son délai.
  void afficherBandeau(const std::string& texte, double secondes);
  // Un nouvel essai entier, serveur compris : la page seule ne se recharge jamais d’ici.
  void rechargerVraiment();

  // À la fermeture : plus rien de ce qui arrive à la page ne change l’écran ni le journal.
  void ignorerLaPage();

  // Ses parties, pour qui l’a créée ; elles vivent autant qu’elle.
  VueFenetre& vue() { return *vue_; }
  ChargementDeLaPage& chargement() { return chargement_; }
  EcranAttente& ecran() { return ecran_; }
  pont::PontNotifications& pont() { return pont_; }

private:
  void quandNavigationCommence() override { chargement_.commencer(); }
  void quandNavigationAvance() override { chargement_.avancer(); }
  void quandNavigationFinie() override { chargement_.finir(); }
  void quandNavigationRatee(const EchecDeNavigation& echec) override { chargement_.rater(echec); }
  void quandOnReessaie() override { ecran_.reessayer(); }
  void quandOnBasculeLeDetail() override { ecran_.basculerDetail(); }
  void quandOnRecharge() override { rechargerVraiment(); }
  void quandLaPageEcrit(const std::string& canal, const pont::MessageDeLaPage& message) override;
  bool laPageVeutOuvrir(const DemandeDAdresse& demande) override;
  bool estLaPage(const std::string& adresse) const override;
  void quandDesFichiersSontIllisibles(std::size_t combien) override;
  void quandLeRegardChange(bool ici) override;
  void quandLeLecteurDEcranChange(const LecteurDEcran& lecteur) override;

  void montrerLaPage();
  void sonderLeContenu();
  void signalerPageRatee(const std::string& raison);
  void ouvrirAilleurs(const std::string& adresse);
  void direALaPage(const std::string& expression);

  Bureau& bureau_;
  socle::BoucleEvenements& boucle_;
  EcranAttente ecran_;
  LecteurDEcran lecteur_;
  LiensSortants liensSortants_;
  bool regardIci_ = false;
  bool pageIgnoree_ = false;
  socle::Minuteur minuteurBandeau_;
  std::deque<socle::Minuteur> sondesPrevues_; // une par page finie, dans l’ordre où elles auront lieu
  std::unique_ptr<VueFenetre> vue_;
  pont::PontNotifications pont_;
  ChargementDeLaPage chargement_;
  socle::Temoin temoin_; // une réponse de la page peut arriver après la fenêtre
};

} // namespace keltrove::fenetre
