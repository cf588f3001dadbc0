// DelegueApplication : la vie de l’application, de son lancement à sa fin.
//
// Il montre la fenêtre, démarre le serveur ou s’y rattache, ouvre la page ou explique l’échec, surveille, et
// au moment de quitter laisse au serveur le temps de noter sa liste. Fil principal seulement.
#pragma once

#include "app/Surveillance.hpp"
#include "fenetre/FenetrePrincipale.hpp"
#include "moteur/MoteurServeur.hpp"
#include "socle/BoucleEvenements.hpp"
#include "socle/FileDeTravail.hpp"

#include <deque>
#include <functional>
#include <memory>
#include <string>

namespace keltrove::app {

// La réponse à une demande de fermeture.
enum class ReponseFermeture {
  maintenant,
  plusTard, // quandOnPeutPartir viendra
};

class DelegueApplication {
public:
  DelegueApplication(std::shared_ptr<moteur::MoteurServeur> moteur,
                     std::shared_ptr<socle::BoucleEvenements> boucle);
  DelegueApplication(const DelegueApplication&) = delete;
  DelegueApplication& operator=(const DelegueApplication&) = delete;
  ~DelegueApplication();

  // Demande la fermeture de l’application : le bureau doit alors poser la question ci-dessous.
  std::function<void()> quandOnVeutQuitter;
  // La réponse définitive après un « plus tard » : le processus se termine aussitôt.
  std::function<void()> quandOnPeutPartir;

  // Une fois, dès que la fenêtre native existe. La vue et le centre survivent au délégué.
  void applicationDidFinishLaunching(fenetre::VueFenetre& vue, pont::CentreNotifications& centre);

  // À chaque demande de fermeture : menu, fenêtre fermée, signal, fin de session. Une seconde demande pendant
  // l’attente ne relance rien.
  ReponseFermeture applicationShouldTerminate();

  // L’écran a disparu, et la boucle d’événements avec lui : attend ici la fin du serveur que nous avons
  // allumé. Au retour, il ne reste qu’à partir.
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
  socle::FileDeTravail arrierePlan_;
  std::unique_ptr<fenetre::FenetrePrincipale> fenetre_;
  Surveillance surveillance_;
  bool demarrageEnCours_ = false;
  bool fermetureEnCours_ = false;
  std::deque<socle::Minuteur> regardsSurLeMot_; // un par démarrage récent, dans l’ordre où ils auront lieu
  socle::Minuteur finProgrammee_;
  // Les réponses du moteur peuvent arriver après le délégué.
  std::shared_ptr<const bool> existe_ = std::make_shared<const bool>(true);
};

} // namespace keltrove::app
