// L’écran d’attente et ses problèmes.

#include "Scenario.hpp"
#include "fenetre/EcranAttente.hpp"
#include "moteur/ErreurServeur.hpp"
#include "moteur/Sonde.hpp"
#include "socle/Texte.hpp"

#include <chrono>
#include <cmath>
#include <csignal>
#include <thread>

using namespace essais;
namespace moteur = keltrove::moteur;

namespace {

void exigerLeProbleme(const moteur::ErreurServeur& erreur, bool avecDetail) {
  exigerEgal(titre(), titreCourt(erreur), "le titre");
  exigerEgal(texte(ecran().phrase.stringValue), explication(erreur), "la phrase");
  exigerEgal(texte(ecran().conseil.stringValue), conseil(erreur), "le conseil");
  exiger(!ecran().isHidden && ecran().roue.isHidden && !ecran().conseil.isHidden, "l’écran, sans sa roue");
  exiger(!ecran().boutonReessayer.isHidden, "« Réessayer » se voit");
  exigerEgal(texte(ecran().boutonReessayer.title), "Réessayer", "son titre");
  exiger(ecran().boutonDetail.isHidden != avecDetail, "le bouton du détail, s’il y en a un");
  exiger(ecran().cadreDetail.isHidden, "le détail est plié");
}

// Du haut vers le bas, dans la fenêtre et sans se chevaucher.
void exigerLOrdreALEcran() {
  [fenetre() layoutIfNeeded];
  CGFloat bas = 0;
  for (NSView* element in ecran().pile.arrangedSubviews) {
    if (element.isHidden) continue;
    const NSRect place = [ecran() convertRect:element.bounds fromView:element];
    exiger(NSMinY(place) >= bas && NSMaxY(place) <= NSHeight(ecran().bounds),
           "chaque élément sous le précédent");
    exiger(NSMinX(place) >= 30 && NSMaxX(place) <= NSWidth(ecran().bounds) - 30,
           "dans la largeur de l’écran");
    exiger(std::abs(NSMidX(place) - NSMidX(ecran().bounds)) <= 1, "centré");
    bas = NSMaxY(place);
  }
}

} // namespace

SCENARIO(chacuneDesSeptErreursSExplique) {
  attendreLEtape("echec-demarrage");
  faire([] {
    keltrove::fenetre::EcranAttente comportement;
    comportement.quandOnDessine = [](const auto& etat) { [ecran() dessiner:etat]; };
    const std::vector<moteur::ErreurServeur> toutes{moteur::CodeIntrouvable{{"/ici", "/là"}},
                                                    moteur::LancementImpossible{"raison du système"},
                                                    moteur::MortAuDemarrage{"une ligne\nune autre"},
                                                    moteur::PasDeReponse{7777, 40, "journal"},
                                                    moteur::PerduEnRoute{"journal"},
                                                    moteur::NodeIntrouvable{},
                                                    moteur::CodeModifie{},
                                                    moteur::MortAuDemarrage{""}};
    for (const auto& erreur : toutes) {
      comportement.montrerAttente("titre", "phrase");
      exiger(!ecran().roue.isHidden && ecran().boutonReessayer.isHidden && ecran().conseil.isHidden,
             "l’attente cache tout du problème");
      comportement.montrerErreur(erreur);
      exigerLeProbleme(erreur, journal(erreur).has_value());
      exigerLOrdreALEcran();
    }
    comportement.montrerErreur(moteur::MortAuDemarrage{"abîmé \xff\xfe"});
    comportement.basculerDetail();
    exigerEgal(texte(ecran().detail.string), "abîmé \xef\xbf\xbd\xef\xbf\xbd",
               "un détail de n’importe quels octets");
    exigerLOrdreALEcran();
    comportement.montrerProbleme("t", "p", "", "");
    exiger(ecran().conseil.isHidden && ecran().boutonDetail.isHidden, "ni conseil ni détail vides");
  });
  quitter();
}

SCENARIO(entreePresseReessayerTantQuIlSeVoit) {
  attendreLEtape("echec-demarrage");
  faire([] {
    exigerEgal(titre(), "Le code de keltrove est introuvable", "le titre");
    exigerEgal(texte(ecran().boutonReessayer.keyEquivalent), "\r", "la touche du bouton");
    exiger(fenetre().firstResponder != vueWeb(), "la page n’a pas le clavier");
    presser(@"\r");
    exigerEgal(titre(), "Nouvel essai…", "le titre");
    presser(@"\r");
  });
  attendreLEtape("echec-demarrage", 2);
  exiger(fois("demarrage-demande") == 2, "Entrée, bouton caché, n’a rien demandé");
  faire([] { [ecran().boutonReessayer performClick:nil]; });
  attendreLEtape("echec-demarrage", 3);
  quitter();
}

SCENARIO(leDetailDUnServeurMortSeDeplieEtSeReplie) {
  attendreLEtape("echec-demarrage");
  exigerEgal(detail("echec-demarrage", "cause"), "Le serveur s’est arrêté aussitôt", "la cause");
  faire([] {
    exiger(!ecran().boutonDetail.isHidden && ecran().cadreDetail.isHidden, "plié d’abord");
    exigerEgal(texte(ecran().boutonDetail.title), "Voir le détail", "le bouton");
    [ecran().boutonDetail performClick:nil];
    exiger(!ecran().cadreDetail.isHidden, "déplié");
    exigerEgal(texte(ecran().boutonDetail.title), "Masquer le détail", "le bouton");
    exiger([ecran().detail.string containsString:@"aïe « é »"], "ce que le serveur a écrit");
    exiger(!ecran().detail.isEditable, "le détail ne s’écrit pas");
    [ecran().boutonDetail performClick:nil];
    exiger(ecran().cadreDetail.isHidden, "replié");
    [ecran().boutonDetail performClick:nil];
    [fenetre() makeFirstResponder:ecran().detail];
    presser(@"\r"); // depuis le détail aussi
  });
  attendreLEtape("echec-demarrage", 2);
  faire([] {
    exiger(ecran().cadreDetail.isHidden, "un nouveau problème est plié");
    exigerEgal(texte(ecran().boutonDetail.title), "Voir le détail", "le bouton");
  });
  quitter();
}

SCENARIO(nodeAbsentSeDit) {
  attendreLEtape("echec-demarrage");
  faire([] {
    exigerLeProbleme(moteur::NodeIntrouvable{}, false);
    presser(@"\r");
  });
  attendreLEtape("echec-demarrage", 2);
  faire([] { exigerLeProbleme(moteur::NodeIntrouvable{}, false); });
  quitter();
}

SCENARIO(unLancementQueLeSystemeRefuseSeDit) {
  attendreLEtape("echec-demarrage");
  faire([] {
    const auto raison = keltrove::socle::texteDuSysteme(std::errc::no_such_file_or_directory);
    exigerLeProbleme(moteur::LancementImpossible{raison}, false);
  });
  quitter();
}

SCENARIO(unServeurMuetSeDitAuBoutDeQuaranteSecondes) {
  attendreLEtape("echec-demarrage");
  faire([] {
    exigerLeProbleme(moteur::PasDeReponse{port(), 40, "je réfléchis"}, true);
    [ecran().boutonDetail performClick:nil];
    exiger([ecran().detail.string containsString:@"je réfléchis"], "ce que le serveur a écrit");
  });
  quitter();
}

SCENARIO(unCodeModifieSeDit) {
  attendreLEtape("echec-demarrage");
  faire([] { exigerLeProbleme(moteur::CodeModifie{}, false); });
  quitter();
}

SCENARIO(laMortDuServeurEnUsageSeMontreEtSeRepare) {
  attendreLEtape("allume");
  afficherLaPage();
  poserUnFichier("fin");
  attendreLEtape("serveur-mort-en-route");
  faire([] {
    exiger(!ecran().isHidden && !vueWeb().acceptsFirstResponder, "l’écran couvre la page");
    exigerEgal(titre(), titreCourt(moteur::PerduEnRoute{}), "le titre");
    presser(@"\r");
  });
  attendreLEtape("allume", 2);
  afficherLaPage(2);
  faire([] { exiger(ecran().isHidden, "la page est revenue"); });
  quitter();
}

SCENARIO(unServeurGeleSeDitApresTroisEchecsEtSeRetrouve) {
  attendreLEtape("allume");
  afficherLaPage();
  poserUnFichier("geler");
  attendreLEtape("serveur-ne-repond-plus");
  faire([] {
    exigerEgal(titre(), "Le serveur de keltrove ne répond plus", "le titre");
    exiger(!ecran().boutonReessayer.isHidden, "« Réessayer » se voit");
  });
  ::kill(std::stoi(lireUnFichier("pid")), SIGCONT);
  while (!moteur::cEstBienKeltrove(port()))
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  faire([] { [ecran().boutonReessayer performClick:nil]; });
  attendreLEtape("rattache");
  afficherLaPage(2);
  quitter();
}

SCENARIO(leMotDeMiseAJourSeMontreDansLeBandeau) {
  attendreLEtape("bandeau");
  faire([] {
    [fenetre() layoutIfNeeded];
    NSTextField* bandeau = controleur().bandeau;
    exigerEgal(texte(bandeau.stringValue), "  Voici du neuf  ", "le texte");
    exiger(!bandeau.isHidden, "il se voit");
    exiger(NSHeight(bandeau.frame) == 30 && NSMinY(bandeau.frame) == 20, "à vingt points du bas");
    exiger(std::abs(NSMidX(bandeau.frame) - NSMidX(bandeau.superview.bounds)) <= 1, "au milieu");
  });
  attendre("le bandeau s’efface", [] { return controleur().bandeau.isHidden; });
  quitter();
}

SCENARIO(unSecondBandeauDureAutantQueLePremier) {
  using Horloge = std::chrono::steady_clock;
  attendreLEtape("echec-demarrage");
  faire([] { vueWeb().quandDesFichiersSontIllisibles(1); });
  std::this_thread::sleep_for(std::chrono::seconds(1));
  const auto second = Horloge::now();
  faire([] { vueWeb().quandDesFichiersSontIllisibles(2); });
  exiger(lire([] { return texte(controleur().bandeau.stringValue); }).starts_with("  2 fichiers"),
         "le second texte");
  attendre("le bandeau s’efface", [] { return controleur().bandeau.isHidden; });
  exiger(Horloge::now() - second >= std::chrono::seconds(6), "le second a duré ses six secondes");
  quitter();
}
