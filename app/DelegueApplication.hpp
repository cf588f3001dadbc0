// DelegueApplication : la vie de l’application, de son lancement à sa fin.
//
// Il montre la fenêtre, démarre le serveur ou s’y rattache, ouvre la page ou explique l’échec, surveille, et
// au moment de quitter laisse au serveur le temps de noter sa liste. C’est lui qui note au journal les étapes
// du démarrage et de la fermeture. Tout échec finit à l’écran, en une phrase ; aucun ne l’arrête. Fil
// principal seulement ; ce qui bloque va à sa file de quatre fils ou à celle du moteur.
#pragma once

#include "app/Surveillance.hpp"
#include "fenetre/Bureau.hpp"
#include "fenetre/FenetrePrincipale.hpp"
#include "moteur/MoteurServeur.hpp"
#include "socle/BoucleEvenements.hpp"
#include "socle/FileDeTravail.hpp"
#include "socle/Temoin.hpp"

#include <deque>
#include <functional>
#include <memory>
#include <string>

namespace keltrove::app {

// La réponse à une demande de fermeture.
enum class ReponseFermeture {
  maintenant,
  plusTard, // le bureau recevra partir()
};

class DelegueApplication {
public:
  // Le bureau survit au délégué.
  DelegueApplication(std::shared_ptr<moteur::MoteurServeur> moteur,
                     std::shared_ptr<socle::BoucleEvenements> boucle, fenetre::Bureau& bureau);
  DelegueApplication(const DelegueApplication&) = delete;
  DelegueApplication& operator=(const DelegueApplication&) = delete;
  ~DelegueApplication();

  // Une fois, dès que le système laisse créer une fenêtre.
  void applicationDidFinishLaunching();

  // L’utilisateur relance l’application, qui tourne déjà : elle revient devant ou, si elle se
  // ferme, se rouvrira.
  void quandOnNousRelance();
  // À lire quand tout est fini.
  bool aRouvrir() const { return aRouvrir_; }

  // À chaque demande de fermeture : menu, fenêtre fermée, signal, fin de session. N’attend pas. « Plus tard »
  // quand un serveur que nous avons allumé doit finir : douze secondes au plus, l’écran le disant. Une
  // seconde demande pendant l’attente ne relance rien.
  ReponseFermeture applicationShouldTerminate();

  // L’écran a disparu, et la boucle d’événements avec lui : attend ici, douze secondes au plus, la fin du
  // serveur que nous avons allumé. Rien n’est dessiné. Au retour, il ne reste qu’à partir.
  void partirSansEcran();

private:
  void lancerLeDemarrage(bool premiereFois);
  void quandLeDemarrageFinit(const moteur::Demarrage& issue);
  void annoncer(const moteur::ResultatDemarrage& resultat);
  void ouvrirLaPage(int port);
  void expliquer(const moteur::ErreurServeur& erreur);
  void noterLaSante(int port);
  void guetterLeMotDeMiseAJour(int restant);
  void quandLeServeurMeurt(const moteur::ErreurServeur& erreur);
  void quandLeServeurNeRepondPlus();
  void surveillerDeNouveau();
  void programmerLaFin();

  const std::shared_ptr<moteur::MoteurServeur> moteur_;
  const std::shared_ptr<socle::BoucleEvenements> boucle_;
  fenetre::Bureau& bureau_;
  socle::FileDeTravail arrierePlan_;
  std::unique_ptr<fenetre::FenetrePrincipale> fenetre_;
  Surveillance surveillance_;
  bool demarrageEnCours_ = false;
  bool fermetureEnCours_ = false;
  bool aRouvrir_ = false;
  std::deque<socle::Minuteur> regardsSurLeMot_; // un par démarrage récent, dans l’ordre où ils auront lieu
  socle::Minuteur finProgrammee_;
  socle::Temoin temoin_; // les réponses du moteur peuvent arriver après le délégué
};

} // namespace keltrove::app
