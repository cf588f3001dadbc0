// Ce qui arrive à la page : échecs, plantages, sonde, liens, regard, lecteur d’écran.

#include "Scenario.hpp"
#include "fenetre/SondeContenu.hpp"

#include <algorithm>

using namespace essais;

namespace {

void ouvrirLaPage() {
  attendreLEtape("allume");
  afficherLaPage();
}

bool aEteDit(const std::string& debut) {
  return std::ranges::any_of(page().evaluations,
                             [&](const auto& une) { return une.expression.starts_with(debut); });
}

void repondreALaSonde(std::size_t laquelle, id valeur, NSError* erreur = nil) {
  const auto sondes = [] {
    std::vector<Evaluation> sondes;
    for (const auto& une : page().evaluations)
      if (une.expression == keltrove::fenetre::expressionDeSonde) sondes.push_back(une);
    return sondes;
  };
  attendre("la sonde", [&] { return sondes().size() == laquelle; });
  faire([&] { sondes().back().repondre(valeur, erreur); });
}

} // namespace

SCENARIO(unePageAnnuleeNeDitRienUneRateeSExplique) {
  attendreLEtape("allume");
  attendre("une page demandée", [] { return !page().requetes.empty(); });
  faire([] {
    commencer(vueWeb());
    rater(vueWeb(), Etape::provisoire, NSURLErrorDomain, -999, @"annulée");
    rater(vueWeb(), Etape::engagee, NSURLErrorDomain, -999, @"annulée");
    exigerEgal(titre(), "Le serveur répond", "une annulation ne change rien");
    exiger(fois("page-ratee") == 0, "ni ne se note");
    rater(vueWeb(), Etape::provisoire, @"AutreDomaine", -999, @"d’un autre domaine");
    exigerEgal(titre(), "La page de keltrove ne s’affiche pas", "le titre");
    exigerEgal(texte(ecran().conseil.stringValue), "Cliquez sur « Réessayer ».", "le conseil");
    [ecran().boutonDetail performClick:nil];
    exigerEgal(texte(ecran().detail.string), "d’un autre domaine", "le détail");
  });
  exigerEgal(detail("page-ratee", "raison"), "d’un autre domaine", "la raison notée");
  faire([] { [ecran().boutonReessayer performClick:nil]; });
  attendreLEtape("rattache");
  afficherLaPage(2);
  faire([] { rater(vueWeb(), Etape::engagee, NSURLErrorDomain, -1004, @"connexion perdue"); });
  exigerEgal(detail("page-ratee", "raison"), "connexion perdue", "une page engagée rate aussi");
  quitter();
}

SCENARIO(leProgrammeDeLaPagePlanteTroisFoisDeSuite) {
  ouvrirLaPage();
  for (std::size_t plantage = 1; plantage <= 3; ++plantage) {
    faire([] {
      planter(vueWeb());
      exigerEgal(titre(), "La page de keltrove ne s’affiche pas", "le titre");
      exiger(!ecran().isHidden && !ecran().boutonReessayer.isHidden, "le problème se voit");
      [ecran().boutonReessayer performClick:nil];
    });
    attendreLEtape("rattache", static_cast<int>(plantage));
    afficherLaPage(plantage + 1);
  }
  faire([] {
    for (int plantage = 0; plantage < 3; ++plantage)
      planter(vueWeb());
    exiger(!ecran().isHidden, "sans page entre eux non plus");
  });
  exiger(fois("page-ratee") == 6, "chacun est noté");
  quitter();
}

SCENARIO(laSondeNoteCeQueLaPageContient) {
  ouvrirLaPage();
  repondreALaSonde(1, @"Accueil|52|jeton-rempli");
  exigerEgal(detail("page-contenu", "titre"), "Accueil", "le titre");
  exigerEgal(detail("page-contenu", "elements"), "52", "les éléments");
  exigerEgal(detail("page-contenu", "cle"), "jeton-rempli", "la clé");
  faire([] { finir(vueWeb()); });
  repondreALaSonde(2, @"|52|jeton-rempli");
  exigerEgal(detail("page-contenu", "titre"), "52", "un titre vide décale");
  exigerEgal(detail("page-contenu", "elements"), "0", "les éléments");
  exigerEgal(detail("page-contenu", "cle"), "?", "la clé");
  faire([] { finir(vueWeb()); });
  repondreALaSonde(3, @52);
  faire([] { finir(vueWeb()); });
  repondreALaSonde(4, @"Accueil|1|x", [NSError errorWithDomain:@"WKErrorDomain" code:4 userInfo:nil]);
  exiger(fois("page-contenu") == 2, "ni un nombre ni une erreur ne se notent");
  quitter();
}

SCENARIO(unLienSOuvreAilleursSurUnGesteSeulement) {
  ouvrirLaPage();
  faire([] {
    const auto ouvertes = [] { return systemeNote().adressesOuvertes.size(); };
    NSString* ici = [NSString stringWithFormat:@"http://localhost:%d/autre", port()];
    exiger(suivre(vueWeb(), ici, WKNavigationTypeOther, false), "la page va chez elle");
    exiger(!suivre(vueWeb(), @"https://exemple.fr/", WKNavigationTypeOther, false), "nulle part sans geste");
    exiger(ouvertes() == 0, "rien ne s’est ouvert");
    exiger(!suivre(vueWeb(), @"https://exemple.fr/a", WKNavigationTypeLinkActivated, false), "ailleurs");
    exiger(!suivre(vueWeb(), @"https://exemple.fr/b", WKNavigationTypeLinkActivated, true), "ailleurs aussi");
    ouvrirUneFenetre(vueWeb(), @"https://exemple.fr/c");
    exiger(!suivre(vueWeb(), @"file:///etc/passwd", WKNavigationTypeLinkActivated, false),
           "jamais un fichier");
    exiger(systemeNote().adressesOuvertes == std::vector<std::string>{"https://exemple.fr/a",
                                                                      "https://exemple.fr/b",
                                                                      "https://exemple.fr/c"},
           "chacun une fois");
    systemeNote().rienNOuvre = true;
    ouvrirUneFenetre(vueWeb(), @"mailto:a@exemple.fr");
  });
  attendreLEtape("bandeau");
  faire([] {
    __block WKPermissionDecision camera = WKPermissionDecisionGrant;
    exiger([controleur().bandeau.stringValue containsString:@"mailto:a@exemple.fr"], "le bandeau le dit");
    [vueWeb().UIDelegate webView:vueWeb()
        requestMediaCapturePermissionForOrigin:nil
                              initiatedByFrame:nil
                                          type:WKMediaCaptureTypeCamera
                               decisionHandler:^(WKPermissionDecision decision) {
                                 camera = decision;
                               }];
    exiger(camera == WKPermissionDecisionDeny, "aucune permission n’est donnée");
  });
  quitter();
}

SCENARIO(laPageSaitSiOnLaRegardeEtQuUnLecteurTourne) {
  ouvrirLaPage();
  // Qui n’est pas encore devant n’a rien à quitter.
  faire([] { [NSApp activateIgnoringOtherApps:YES]; });
  attendre("l’application est devant", [] { return static_cast<bool>([NSApp isActive]); });
  faire([] {
    page().evaluations.clear();
    [NSApp deactivate];
  });
  attendre("l’utilisateur est ailleurs", [] { return aEteDit("window.keltrovePont?.regard?.(false)"); });
  faire([] { [NSApp activateIgnoringOtherApps:YES]; });
  attendre("l’utilisateur est revenu", [] { return aEteDit("window.keltrovePont?.regard?.(true)"); });
  faire([] { NSWorkspace.sharedWorkspace.voiceOverEnabled = YES; });
  attendre("un lecteur tourne",
           [] { return aEteDit("window.keltroveLecteur = { tourne: true, voitLaPage: true }"); });
  faire([] { NSWorkspace.sharedWorkspace.voiceOverEnabled = NO; });
  attendre("il ne tourne plus", [] { return aEteDit("window.keltroveLecteur = { tourne: false"); });
  faire([] {
    exiger(ecrire(vueWeb(), @"keltroveLecteur", @"à lire"), "le canal est ouvert");
    exiger(ecrire(vueWeb(), @"keltroveLecteur", @{@"objet" : @"non"}), "un objet ne se lit pas");
    exiger(systemeNote().annonces == std::vector<std::string>{"à lire"}, "l’annonce");
    exigerEgal(texte(vueWeb().accessibilityLabel), "Page", "le nom de la page");
  });
  quitter();
}
