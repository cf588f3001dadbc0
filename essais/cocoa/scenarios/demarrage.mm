// Du lancement à la page.

#include "Scenario.hpp"

using namespace essais;

SCENARIO(unServeurSAllumeEtSaPageSAffiche) {
  faire([] {
    exiger(NSApp.activationPolicy == NSApplicationActivationPolicyRegular, "une application ordinaire");
    exiger(fenetre().isVisible && fenetre().isKeyWindow, "la fenêtre est devant, avec le clavier");
    exigerEgal(texte(ecran().titre.stringValue), "keltrove démarre…", "le titre");
    exiger(!ecran().isHidden && !ecran().roue.isHidden, "l’écran d’attente et sa roue se voient");
  });
  attendreLEtape("allume");
  afficherLaPage();
  attendreLEtape("page-affichee");
  faire([] { exiger(ecran().isHidden, "la page est découverte"); });
  demander([] { [NSApp terminate:nil]; });
  attendre("l’écran de fermeture", [] { return texte(ecran().titre.stringValue) == "Fermeture…"; });
}
