// Le pont de notifications, de la page au centre et retour.

#include "Scenario.hpp"

#include <algorithm>
#include <atomic>

using namespace essais;

namespace {

NSString* const canal = @"keltroveNotifications";

void ecrireAuPont(id corps) {
  faire([corps] { exiger(ecrire(vueWeb(), canal, corps), "le canal est ouvert"); });
}

int foisDit(const std::string& ligne) {
  return static_cast<int>(
      std::ranges::count_if(page().evaluations, [&](const auto& une) { return une.expression == ligne; }));
}

std::string etat(const char* valeur) {
  return std::string("window.keltrovePont && window.keltrovePont.etat(\"") + valeur + "\");";
}

void attendreLEtat(const char* valeur, int combien = 1) {
  attendre(std::string("l’état ") + valeur, [=] { return foisDit(etat(valeur)) >= combien; });
}

std::size_t ajouts() {
  const std::lock_guard garde(centreNote().verrou);
  return centreNote().ajouts.size();
}

UNNotificationRequest* dernierAjout() {
  const std::lock_guard garde(centreNote().verrou);
  return centreNote().ajouts.back();
}

void statut(UNAuthorizationStatus valeur) {
  const std::lock_guard garde(centreNote().verrou);
  centreNote().statut = valeur;
}

void ouvrirLaPage() {
  attendreLEtape("allume");
  afficherLaPage();
}

} // namespace

SCENARIO(laPermissionEstDemandeeUneFois) {
  attendre("la demande", [] {
    const std::lock_guard garde(centreNote().verrou);
    return !centreNote().demandes.empty();
  });
  ouvrirLaPage();
  faire([] { presser(@"r", NSCommandKeyMask); });
  attendreLEtape("rattache");
  const std::lock_guard garde(centreNote().verrou);
  exiger(centreNote().demandes ==
             std::vector<UNAuthorizationOptions>{UNAuthorizationOptionAlert | UNAuthorizationOptionSound},
         "une fois, pour les alertes et le son");
  exiger([NSUserDefaults.standardUserDefaults boolForKey:@"fr.zelcor.keltrove.permissionDejaDemandee"],
         "et c’est retenu");
  quitter();
}

SCENARIO(laPageApprendChacunDesEtats) {
  ouvrirLaPage();
  faire([] { page().evaluations.clear(); });
  statut(UNAuthorizationStatusNotDetermined);
  ecrireAuPont(@{@"action" : @"etat"});
  attendreLEtat("attente");
  statut(UNAuthorizationStatusDenied);
  ecrireAuPont(@{@"action" : @"etat"});
  attendreLEtat("refuse");
  statut(UNAuthorizationStatusAuthorized);
  ecrireAuPont(@{@"action" : @"etat"});
  attendreLEtat("accorde");
  statut(UNAuthorizationStatusProvisional);
  ecrireAuPont(@{@"action" : @"etat"});
  attendreLEtat("accorde", 2);
  quitter();
}

SCENARIO(horsDUnPaquetLeCentreEstAbsentEtNulNYTouche) {
  ouvrirLaPage();
  faire([] {
    exiger(NSBundle.mainBundle.bundleIdentifier == nil, "le programme n’a pas de paquet");
    page().evaluations.clear();
  });
  ecrireAuPont(@{@"action" : @"etat"});
  attendreLEtat("absent");
  ecrireAuPont(@{@"action" : @"notifier", @"id" : @"t1"});
  ecrireAuPont(@{@"action" : @"etat"});
  attendreLEtat("absent", 2);
  exiger(ajouts() == 0, "rien de posé");
  quitter();
}

SCENARIO(uneNotificationSePoseEtRemplaceCelleDuMemeTerminal) {
  ouvrirLaPage();
  ecrireAuPont(@{@"action" : @"notifier", @"id" : @"t3", @"titre" : @"  Un titre ", @"corps" : @7});
  UNNotificationRequest* premiere = dernierAjout();
  exigerEgal(texte(premiere.identifier), "keltrove-t3", "l’identifiant");
  exigerEgal(texte(premiere.content.title), "Un titre", "le titre");
  exigerEgal(texte(premiere.content.body), "Ce terminal vous attend.", "le corps");
  exiger([premiere.content.userInfo isEqual:@{@"idTerminal" : @"t3"}], "ce qu’elle porte");
  exiger(premiere.content.sound == [UNNotificationSound defaultSound] && premiere.trigger == nil,
         "le son, aussitôt");
  ecrireAuPont(@{@"action" : @"notifier", @"id" : @"t3", @"titre" : @"Second"});
  ecrireAuPont(@{@"action" : @"notifier"});
  UNNotificationRequest* sansTerminal = dernierAjout();
  exiger(sansTerminal.identifier.length == std::string("keltrove-").size() + 36, "un identifiant au hasard");
  exiger([sansTerminal.content.userInfo isEqual:@{@"idTerminal" : @""}], "aucun terminal");
  {
    const std::lock_guard garde(centreNote().verrou);
    exiger(centreNote().montrees.count == 2, "une par terminal");
    exigerEgal(texte([[centreNote().montrees[@"keltrove-t3"] content] title]), "Second", "la plus récente");
    centreNote().refus = @"pas ici";
  }
  ecrireAuPont(@{@"action" : @"notifier", @"id" : @"t4"}); // un refus ne trouble rien
  ecrireAuPont(@{@"action" : @"notifier", @"id" : [NSString stringWithFormat:@"%C", (unichar)0xD83D]});
  exiger(ajouts() == 5, "un nom coupé au milieu d’un caractère non plus");
  exiger(lire([premiere] { return presenter(premiere); }) ==
             (UNNotificationPresentationOptionBanner | UNNotificationPresentationOptionSound),
         "devant aussi, une bannière et le son");
  quitter();
}

SCENARIO(unMessageDeNImporteQuelTypeNEmpecheRien) {
  ouvrirLaPage();
  for (id corps in @[
         @"texte", @42, @3.5, @YES, [NSNull null], [NSDate date], @[ @1, @[] ], @{},
         @{@"action" : @7}, @{@"action" : @"Notifier"}, @{@"action" : @"ETAT"},
         @{@"action" : @[ @"etat" ]},
         @{@1 : @"etat"}
       ])
    ecrireAuPont(corps);
  faire([] { exiger(ecrire(vueWeb(), canal, nil), "ni rien du tout"); });
  exiger(ajouts() == 0, "rien de posé");
  ecrireAuPont(@{@"action" : @"notifier", @"id" : @"t1", @"autre" : @{@"x" : @[ @1 ]}});
  exiger(ajouts() == 1, "le suivant est entendu");
  quitter();
}

SCENARIO(unClicRameneLaFenetreEtOuvreLeTerminal) {
  ouvrirLaPage();
  ecrireAuPont(@{@"action" : @"notifier", @"id" : @"a\"\\/"});
  ecrireAuPont(@{@"action" : @"notifier"});
  faire([] {
    page().evaluations.clear();
    [NSApp hide:nil];
  });
  const int activations = lire([] { return systemeNote().activations; });
  static std::atomic<int> finis = 0;
  const auto cliquerSur = [](std::size_t lequel) {
    UNNotificationRequest* demande = nil;
    {
      const std::lock_guard garde(centreNote().verrou);
      demande = centreNote().ajouts.at(lequel);
    }
    cliquer(demande, ^{
      ++finis;
    });
  };
  cliquerSur(0);
  const std::string ligne = R"(window.keltrovePont && window.keltrovePont.ouvrir("a\"\\\/");)";
  attendre("le terminal s’ouvre", [&] { return foisDit(ligne) == 1; });
  attendre("le centre le sait", [] { return finis == 1; });
  faire([&] {
    exiger(systemeNote().activations == activations + 1, "l’application vient devant");
    exiger(fenetre().isKeyWindow, "sa fenêtre aussi");
    page().evaluations.clear();
  });
  cliquerSur(1);
  attendre("le centre le sait", [] { return finis == 2; });
  exiger(lire([] {
           return std::ranges::count_if(page().evaluations,
                                        [](const auto& une) { return une.expression.contains("ouvrir"); });
         }) == 0,
         "sans terminal, aucun ne s’ouvre");
  quitter();
}

SCENARIO(unClicApresLaFenetreFermeeRameneEncoreLApplication) {
  ouvrirLaPage();
  ecrireAuPont(@{@"action" : @"notifier", @"id" : @"t1"});
  demander([] { presser(@"w", NSCommandKeyMask); });
  attendreLEtape("arret-demande");
  const int activations = lire([] { return systemeNote().activations; });
  static std::atomic<bool> su = false;
  cliquer(dernierAjout(), ^{
    su = true;
  });
  attendre("le centre le sait", [] { return su.load(); });
  faire([&] { exiger(systemeNote().activations == activations + 1, "l’application vient devant"); });
  exiger(fois("arret-demande") == 1, "la fermeture continue");
  poserUnFichier("adieu");
}

SCENARIO(lesReglagesDuSystemeSOuvrent) {
  ouvrirLaPage();
  ecrireAuPont(@{@"action" : @"reglages"});
  faire([] {
    exiger(systemeNote().adressesOuvertes ==
               std::vector<std::string>{"x-apple.systempreferences:com.apple.preference.notifications"},
           "le panneau des notifications");
  });
  quitter();
}
