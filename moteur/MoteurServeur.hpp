// MoteurServeur : démarre le serveur ou s’y rattache, puis l’arrête poliment.
//
// Un seul par processus, tenu par le délégué. Il ne note rien au journal de démarrage. Il n’envoie jamais
// d’autre signal que SIGTERM, et seulement à un serveur qu’il a lancé. Un essai sonde d’abord le port
// souhaité ; si rien n’y répond, il lance le serveur et l’attend 40 secondes, en regardant à chaque quart de
// seconde s’il répond ou s’il est mort, et un tour sur huit s’il a choisi un autre port.
//
// Sauf mention, les opérations s’appellent depuis tout fil et n’attendent au plus que la fin d’un lancement ;
// les appels de retour viennent sur le fil principal, par la boucle. Un échec est une valeur (ErreurServeur),
// jamais une exception.
#pragma once

#include "moteur/ArretServeur.hpp"
#include "moteur/Emplacements.hpp"
#include "moteur/ErreurServeur.hpp"
#include "moteur/EtatServeur.hpp"
#include "moteur/LignesServeur.hpp"
#include "moteur/Sonde.hpp"
#include "socle/BoucleEvenements.hpp"
#include "socle/Environnement.hpp"
#include "socle/FileDeTravail.hpp"
#include "socle/Horloge.hpp"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace keltrove::moteur {

class MoteurServeur : public std::enable_shared_from_this<MoteurServeur> {
public:
  struct Contexte {
    std::shared_ptr<socle::BoucleEvenements> boucle;
    std::shared_ptr<socle::Horloge> horloge;
    Emplacements emplacements;
    // L’environnement de l’application tel qu’à son lancement, avant les réglages de la boîte à outils.
    socle::Environnement environnement;
  };

  explicit MoteurServeur(Contexte contexte);

  // Lance un essai sur la file du moteur ; `fini` en reçoit l’issue, une fois, plus tard. Les essais se
  // suivent, jamais deux à la fois. Un serveur lancé par un essai précédent et qui tourne encore est gardé en
  // mémoire : il sera arrêté avec le dernier.
  void demarrer(std::function<void(Demarrage)> fini);

  // Interdit tout lancement à venir, pour toujours ; attend celui qui a lieu à cet instant, quelques
  // millisecondes. Au retour, `nousLavonsAllume` ne peut plus devenir vrai : on peut quitter sans laisser
  // derrière soi un serveur lancé au dernier moment.
  void neLancerPlusRien();

  // Fil principal. Arrête le serveur si nous l’avons allumé et qu’il tourne encore, avec ceux que nous avions
  // lancés avant lui, et les attend 12 secondes au plus. `fini` reçoit une phrase pour le journal, une fois :
  // tout de suite s’il n’y a rien à arrêter.
  void arreter(std::function<void(std::string)> fini);

  // La même chose en bloquant, pour quand il n’y a plus de boucle d’événements.
  std::string arreterEnAttendant();

  // Celui où l’on sait servir le serveur, ou le dernier connu ; rien avant le premier.
  std::optional<int> port() const;
  // Vrai d’un lancement, même sans réponse ou mort depuis, jusqu’à ce que l’on se rattache à un autre.
  bool nousLavonsAllume() const;

  // Appelé à la mort d’un serveur que nous avons allumé, après l’issue qui l’a dit allumé ; jamais une fois
  // un autre lancé à sa place, ou l’arrêt demandé. À poser avant de démarrer.
  std::function<void(ErreurServeur)> quandLeServeurMeurt;

  // Bloquantes, de quelques secondes au plus (voir Sonde) : jamais sur le fil principal.
  bool cEstBienKeltrove(int port) const { return moteur::cEstBienKeltrove(port); }
  std::optional<Sante> sante(int port) const { return moteur::sante(port); }

  // Ce que le serveur lancé a écrit ; rien d’un serveur auquel on s’est rattaché.
  std::optional<std::string> messageDeMiseAJour() const { return lignes_->messageDeMiseAJour(); }
  const LignesServeur& lignesJournal() const { return *lignes_; }

private:
  using ProcessusPartage = std::shared_ptr<socle::Processus>;

  Demarrage demarrerVraiment(int essai);
  std::expected<ProcessusPartage, ErreurServeur> lancer(int essai);
  Demarrage attendreLaReponse(int essai, const ProcessusPartage& processus, int port);
  std::optional<Demarrage> unTour(int essai, const ProcessusPartage& processus, int port, int tour);
  Demarrage conclureApresUneFin(int essai, const ProcessusPartage& processus);
  Demarrage rattacher(int essai, int port);
  Demarrage allumer(int essai, const ProcessusPartage& processus, int port);
  void guetterLaMort(int essai);
  void signalerLaMort(int essai, socle::Processus& processus);
  void changerDEtat(int essai, EtatServeur::Valeur suivant);
  bool estLeDernierLance(int essai) const;
  std::optional<ArretServeur> commencerLArret();

  const Contexte contexte_;
  const std::shared_ptr<LignesServeur> lignes_ = std::make_shared<LignesServeur>();
  socle::FileDeTravail file_;

  mutable std::mutex verrouEtat_; // les champs ci-dessous
  EtatServeur::Valeur etat_;
  int dernierEssai_ = 0;
  // Lancés par nous, remplacés depuis, et peut-être encore en vie : gelés, ou muets trop longtemps.
  std::vector<ServeurLance> anterieurs_;
  bool lancementInterdit_ = false;
};

// L’environnement du serveur : celui de l’application, où seuls HOME, LANG (s’il manque) et PATH sont
// réglés. Les dossiers convenus passent avant ceux du PATH hérité : lancé d’un menu, le serveur trouve ce
// que trouve un terminal.
socle::Environnement environnementDuServeur(socle::Environnement environnement, const std::string& maison);

} // namespace keltrove::moteur
