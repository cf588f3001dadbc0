// Les glissements au-dessus de la page, opération par opération.

#include "Glissement.hpp"

using namespace essais;

namespace {

NSURL* fichier(NSString* chemin) {
  return [NSURL fileURLWithPath:chemin];
}

constexpr const char* survol = "if (window.keltroveSurvolChemins) window.keltroveSurvolChemins(x, y);";
constexpr const char* fin = "if (window.keltroveSurvolChemins) window.keltroveSurvolChemins(null, null);";
constexpr const char* depot =
    "if (window.keltroveDeposerChemins) window.keltroveDeposerChemins(chemins, x, y);";

void exigerLAppel(const char* corps, double x, double y) {
  const auto& appel = page().appels.back();
  exigerEgal(appel.corps, corps, "l’appel");
  exiger(appel.dansLaPage, "dans le monde de la page et son cadre principal");
  exiger([appel.arguments[@"x"] doubleValue] == x && [appel.arguments[@"y"] doubleValue] == y, "le point");
}

void decouvrirLaPage() {
  attendreLEtape("allume");
  afficherLaPage();
  faire([] {
    page().appels.clear();
    page().glissements.clear();
  });
}

} // namespace

SCENARIO(desFichiersPassentParLesSeptOperations) {
  decouvrirLaPage();
  faire([] {
    Glissement* trois =
        glisser(@[ fichier(@"/tmp/b"), fichier(@"/tmp/a é"), fichier(@"/tmp/c\nd") ], 200, 100);
    exiger([vueWeb() draggingEntered:trois] == NSDragOperationCopy && vueWeb().glisserDeFichiers,
           "pris en copie");
    exigerLAppel(survol, 200, 100);
    trois.draggingLocation = [vueWeb() convertPoint:NSMakePoint(10, 20) toView:nil];
    exiger([vueWeb() draggingUpdated:trois] == NSDragOperationCopy, "suivi en copie");
    exigerLAppel(survol, 10, 20);
    exiger([vueWeb() prepareForDragOperation:trois], "prêt");
    exiger([vueWeb() performDragOperation:trois], "remis");
    exigerLAppel(depot, 10, 20);
    NSArray* chemins = page().appels.back().arguments[@"chemins"];
    exiger([chemins isEqual:@[ @"/tmp/b", @"/tmp/a é", @"/tmp/c\nd" ]], "les chemins, dans leur ordre");
    exiger(vueWeb().glisserDeFichiers, "le drapeau reste levé jusqu’à la conclusion");
    [vueWeb() concludeDragOperation:trois];
    exiger(!vueWeb().glisserDeFichiers, "puis tombe");
    [vueWeb() draggingEnded:trois];
    exiger(page().appels.size() == 3 && page().glissements.empty(), "rien d’autre à la page, rien à WebKit");
  });
  quitter();
}

SCENARIO(desFichiersQuiRepartentNeLeDisentQuUneFois) {
  decouvrirLaPage();
  faire([] {
    Glissement* un = glisser(@[ fichier(@"/tmp/a") ], 5, 5);
    [vueWeb() draggingEntered:un];
    [vueWeb() draggingExited:un];
    exigerEgal(page().appels.back().corps, fin, "la fin du survol");
    exiger([page().appels.back().arguments count] == 0, "sans argument");
    [vueWeb() draggingEnded:un];
    exiger(page().appels.size() == 2 && !vueWeb().glisserDeFichiers, "une fois");
    [vueWeb() draggingEntered:un];
    [vueWeb() draggingEnded:un]; // fini ailleurs, sans être sorti
    exiger(page().appels.size() == 4 && page().appels.back().corps == fin, "et de nouveau");
    exiger(page().glissements.empty(), "WebKit n’en a rien vu");
  });
  quitter();
}

SCENARIO(unTexteResteAWebKit) {
  decouvrirLaPage();
  faire([] {
    const auto laisser = [](Glissement* glissement) {
      page().glissements.clear();
      exiger([vueWeb() draggingEntered:glissement] == NSDragOperationGeneric, "ce que WebKit répond");
      exiger([vueWeb() draggingUpdated:glissement] == NSDragOperationGeneric, "ce que WebKit répond");
      [vueWeb() draggingExited:glissement];
      [vueWeb() prepareForDragOperation:glissement];
      exiger(![vueWeb() performDragOperation:glissement], "ce que WebKit répond");
      [vueWeb() concludeDragOperation:glissement];
      [vueWeb() draggingEnded:glissement];
      exiger(page().glissements == std::vector<std::string>{"draggingEntered", "draggingUpdated",
                                                            "draggingExited", "prepareForDragOperation",
                                                            "performDragOperation", "concludeDragOperation"},
             "six à WebKit, jamais la fin");
    };
    laisser(glisser(@[ @"un texte" ], 1, 1));
    laisser(glisser(@[ [NSURL URLWithString:@"https://exemple.fr/"] ], 1, 1));
    laisser(glisser(@[], 1, 1));
    Glissement* promis = glisser(@[], 1, 1);
    [promis.draggingPasteboard declareTypes:@[ @"com.apple.pasteboard.promised-file-url" ] owner:nil];
    laisser(promis);
    exiger(page().appels.empty(), "rien à la page");
  });
  quitter();
}

SCENARIO(leZoomCompteEtNEstJamaisNul) {
  decouvrirLaPage();
  faire([] {
    Glissement* un = glisser(@[ fichier(@"/tmp/a") ], 200, 100);
    vueWeb().pageZoom = 2;
    [vueWeb() draggingEntered:un];
    exigerLAppel(survol, 100, 50);
    vueWeb().magnification = 2.5;
    [vueWeb() draggingUpdated:un];
    exigerLAppel(survol, 40, 20);
    vueWeb().magnification = 0;
    [vueWeb() draggingUpdated:un];
    exigerLAppel(survol, 20000, 10000);
    [vueWeb() draggingExited:un];
  });
  quitter();
}

SCENARIO(unFichierAuNomIllisibleSeDitEtLesAutresSeDeposent) {
  decouvrirLaPage();
  faire([] {
    Glissement* deux = glisser(@[ fichier(@"/tmp/a"), [NSURL URLWithString:@"file:///tmp/%FF"] ], 5, 5);
    [vueWeb() draggingEntered:deux];
    exiger([vueWeb() performDragOperation:deux], "remis");
    exiger([page().appels.back().arguments[@"chemins"] isEqual:@[ @"/tmp/a" ]], "celui qui a un nom");
    exiger([controleur().bandeau.stringValue containsString:@"Un fichier n’a pas été déposé"],
           "l’autre se dit");
    [vueWeb() concludeDragOperation:deux];
  });
  quitter();
}

SCENARIO(dixMilleFichiersSeDeposentDUnCoup) {
  decouvrirLaPage();
  faire([] {
    NSMutableArray* fichiers = [NSMutableArray array];
    for (int i = 0; i < 10000; ++i)
      [fichiers addObject:fichier([NSString stringWithFormat:@"/tmp/un dossier/fichier %d.txt", i])];
    Glissement* tous = glisser(fichiers, 1, 1);
    [vueWeb() draggingEntered:tous];
    exiger([vueWeb() performDragOperation:tous], "remis");
    NSArray* chemins = page().appels.back().arguments[@"chemins"];
    exiger(chemins.count == 10000, "tous");
    exigerEgal(texte(chemins.lastObject), "/tmp/un dossier/fichier 9999.txt", "le dernier");
    [vueWeb() concludeDragOperation:tous];
  });
  quitter();
}
