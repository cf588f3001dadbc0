// Les chemins de la fermeture.

#include "Scenario.hpp"
#include "fenetre/SondeContenu.hpp"

#include <algorithm>
#include <csignal>

#include <unistd.h>

using namespace essais;

namespace {

void fermerParLeSignal(int signal) {
  attendreLEtape("allume");
  afficherLaPage();
  ::kill(::getpid(), signal);
  attendre("l’écran de fermeture", [] { return titre() == "Fermeture…"; });
}

} // namespace

SCENARIO(fermerLaFenetreArreteLeServeurPuisTermine) {
  attendreLEtape("allume");
  afficherLaPage();
  demander([] { presser(@"w", NSCommandKeyMask); });
  attendre("l’écran de fermeture", [] { return titre() == "Fermeture…"; });
}

SCENARIO(laFermetureAttendLeServeurEtNEcouteQueLui) {
  attendreLEtape("allume");
  afficherLaPage();
  quitter();
  attendreLEtape("arret-demande");
  faire([] {
    exigerEgal(titre(), "Fermeture…", "le titre");
    planter(vueWeb());
    [NSApp terminate:nil]; // une seconde demande ne change rien
    exigerEgal(titre(), "Fermeture…", "la page n’y change rien");
  });
  exiger(fois("arret-demande") == 1 && fois("page-ratee") == 0, "une seule fermeture");
  exiger(fois("arret-fini") == 0, "le serveur prend son temps");
  poserUnFichier("adieu");
}

SCENARIO(uneDemandeDArretFermeParLeCheminOrdinaireEtUneSeuleFois) {
  fermerParLeSignal(SIGTERM);
  ::kill(::getpid(), SIGTERM);
  attendre("la boucle tourne encore", [] { return titre() == "Fermeture…"; });
  exiger(fois("arret-demande") == 1 && fois("arret-fini") == 0, "une seule fermeture, qui attend le serveur");
  poserUnFichier("adieu");
}

SCENARIO(ctrlCDansLeTerminalDeLancementFermeAussi) {
  fermerParLeSignal(SIGINT);
}

SCENARIO(laFinDuTerminalDeLancementFermeAussi) {
  fermerParLeSignal(SIGHUP);
}

SCENARIO(unSignalRecuIgnoreLeReste) {
  attendreLEtape("allume");
  afficherLaPage();
  ::kill(::getpid(), SIGHUP);
  attendre("la sonde, une seconde après", [] {
    return std::ranges::any_of(page().evaluations, [](const auto& une) {
      return une.expression == keltrove::fenetre::expressionDeSonde;
    });
  });
  exiger(fois("arret-demande") == 0, "l’application continue");
  quitter();
}

SCENARIO(leServeurDejaMortLaFermetureEstImmediate) {
  attendreLEtape("allume");
  poserUnFichier("fin");
  attendreLEtape("serveur-mort-en-route");
  quitter();
}

SCENARIO(quitterPendantUnDemarrageNeLaisseRien) {
  attendreLEtape("demarrage-demande");
  quitter();
}
