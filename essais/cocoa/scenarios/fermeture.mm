// Les chemins de la fermeture.

#include "Scenario.hpp"

using namespace essais;

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
