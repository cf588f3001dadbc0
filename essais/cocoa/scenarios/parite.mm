// La table de parité : parite.py la lit, et mène ce scénario une ligne après l’autre. Une ligne est un geste,
// et son objet après une tabulation ; « voir » rend en JSON, sur la sortie, ce qui se voit.

#include "Glissement.hpp"
#include "Scenario.hpp"
#include "bureau/cocoa/Textes.hpp"
#include "essais/parite/Entendu.hpp"
#include "fenetre/SondeContenu.hpp"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <map>
#include <sstream>

using namespace essais;
using keltrove::bureau::enNSString;
using Texte = const std::string&;

// Ce que le système permet se décide avant l’application.
@interface PermissionAuDepart : NSObject
@end
@implementation PermissionAuDepart
+ (void)load {
  const char* voulue = std::getenv("KELTROVE_PERMISSION_D_ESSAI");
  if (voulue == nullptr) return;
  @autoreleasepool {
    centreNote().statut = static_cast<UNAuthorizationStatus>(std::atoi(voulue));
  }
}
@end

namespace {

// La page, qui entend ce qu’on lui dit une fois venue.
std::vector<std::string> entendus;
std::size_t evaluationsVues = 0;
std::size_t appelsVus = 0;
bool pageVenue = false;

void ecouterLaPage() {
  for (; evaluationsVues < page().evaluations.size(); ++evaluationsVues) {
    const auto& une = page().evaluations[evaluationsVues];
    if (une.expression == keltrove::fenetre::expressionDeSonde) une.repondre(@"Essai|8|jeton-rempli", nil);
    if (const auto dit = keltrove::essais::entendu(une.expression); dit && pageVenue)
      entendus.push_back(*dit);
  }
  for (; appelsVus < page().appels.size(); ++appelsVus) {
    const auto& un = page().appels[appelsVus];
    NSData* json = [NSJSONSerialization dataWithJSONObject:un.arguments ?: @{} options:0 error:nil];
    const auto* octets = static_cast<const char*>(json.bytes);
    entendus.push_back(
        keltrove::essais::entendu(un.corps, nlohmann::json::parse(octets, octets + json.length)));
  }
}

void laPageVient(Texte) {
  const auto demandees = lire([] {
    ecouterLaPage();
    pageVenue = true;
    return page().requetes.size();
  });
  afficherLaPage(demandees);
}

void laPageDit(Texte message) {
  const auto json = "[" + message + "]"; // seul, un texte ou un nombre n’est pas du JSON pour tous
  faire([&] {
    NSArray* corps = [NSJSONSerialization JSONObjectWithData:[NSData dataWithBytes:json.data()
                                                                            length:json.size()]
                                                     options:0
                                                       error:nil];
    ecrire(vueWeb(), @"keltroveNotifications", corps[0]);
  });
}

// Les notifications, numérotées à mesure que leurs identifiants paraissent.
std::vector<std::string> identifiants;

std::size_t rangDe(UNNotificationRequest* demande) {
  const auto identifiant = texte(demande.identifier);
  const auto trouve = std::ranges::find(identifiants, identifiant);
  const auto rang = trouve - identifiants.begin();
  if (trouve == identifiants.end()) identifiants.push_back(identifiant);
  return static_cast<std::size_t>(rang);
}

nlohmann::json notifications() {
  const std::lock_guard garde(centreNote().verrou);
  auto dites = nlohmann::json::array();
  for (std::size_t i = 0; i < centreNote().demandes.size(); ++i)
    dites.push_back("permission demandée");
  for (UNNotificationRequest* une : centreNote().ajouts)
    dites.push_back(std::to_string(rangDe(une) + 1) + " " + texte(une.content.title) + " / " +
                    texte(une.content.body));
  return dites;
}

void cliquerLaNotification(Texte numero) {
  UNNotificationRequest* cliquee = nil;
  {
    const std::lock_guard garde(centreNote().verrou);
    for (UNNotificationRequest* une : centreNote().ajouts)
      if (std::to_string(rangDe(une) + 1) == numero) cliquee = une;
  }
  cliquer(cliquee, ^{
          });
}

// Un glissement, opération par opération.
void entrer(Glissement* glissement) {
  [vueWeb() draggingEntered:glissement];
  [vueWeb() draggingUpdated:glissement];
}

void deposer(Glissement* glissement) {
  [vueWeb() prepareForDragOperation:glissement];
  [vueWeb() performDragOperation:glissement];
  [vueWeb() concludeDragOperation:glissement];
  [vueWeb() draggingEnded:glissement];
}

void glisserDesFichiers(Texte chemins) {
  NSMutableArray* fichiers = [NSMutableArray array];
  std::istringstream mots(chemins);
  for (std::string mot; mots >> mot;)
    [fichiers addObject:[NSURL fileURLWithPath:enNSString(mot)]];
  faire([fichiers] {
    Glissement* glissement = glisser(fichiers, 5, 5);
    entrer(glissement);
    deposer(glissement);
  });
}

void survoler(Texte chemin) {
  faire([&] {
    Glissement* glissement = glisser(@[ [NSURL fileURLWithPath:enNSString(chemin)] ], 5, 5);
    entrer(glissement);
    [vueWeb() draggingExited:glissement];
    [vueWeb() draggingEnded:glissement];
  });
}

// WebKit l’aurait donné à la page.
void glisserUnTexte(Texte lequel) {
  faire([&] {
    const auto deposes = [] { return std::ranges::count(page().glissements, "performDragOperation"); };
    const auto avant = deposes();
    Glissement* glissement = glisser(@[ enNSString(lequel) ], 5, 5);
    entrer(glissement);
    deposer(glissement);
    ecouterLaPage();
    if (deposes() > avant) entendus.push_back("texte(\"" + lequel + "\")");
  });
}

// Ce qui se voit.
std::string etatDeLEcran() {
  if (ecran().isHidden) return "page";
  auto dit = titre();
  for (NSButton* bouton in @[ ecran().boutonReessayer, ecran().boutonDetail ])
    if (!bouton.isHidden) dit += " | " + texte(bouton.title);
  return dit;
}

std::string etatDeLaFenetre() {
  if (!fenetre().isVisible) return "cachée";
  return fenetre().isKeyWindow && NSApp.isActive ? "devant" : "derrière";
}

nlohmann::json ouverts() {
  auto dits = nlohmann::json::array();
  for (const auto& adresse : systemeNote().adressesOuvertes)
    dits.push_back(adresse == "x-apple.systempreferences:com.apple.preference.notifications"
                       ? "réglages des notifications"
                       : "navigateur " + adresse);
  return dits;
}

nlohmann::json ceQuiSeVoit() {
  ecouterLaPage();
  const auto visible = [](NSView* vue, NSString* dit) { return vue.isHidden ? "aucun" : texte(dit); };
  return {{"écran", etatDeLEcran()},
          {"phrase", texte(ecran().phrase.stringValue)},
          {"conseil", visible(ecran().conseil, ecran().conseil.stringValue)},
          {"détail", visible(ecran().cadreDetail, ecran().detail.string)},
          {"bandeau", visible(controleur().bandeau, controleur().bandeau.stringValue)},
          {"fenêtre", etatDeLaFenetre()},
          {"page", entendus},
          {"notification", notifications()},
          {"système", ouverts()}};
}

const std::map<std::string, void (*)(Texte objet)> gestes{
    {"réessayer", [](Texte) { faire([] { [ecran().boutonReessayer performClick:nil]; }); }},
    {"voir le détail", [](Texte) { faire([] { [ecran().boutonDetail performClick:nil]; }); }},
    {"recharger", [](Texte) { faire([] { presser(@"r", NSCommandKeyMask); }); }},
    {"quitter", [](Texte) { quitter(); }},
    {"fermer la fenêtre", [](Texte) { demander([] { [fenetre() performClose:nil]; }); }},
    {"finir la session", [](Texte) { demander([] { [NSApp terminate:nil]; }); }},
    {"rouvrir",
     [](Texte) {
       faire([] { [NSApp.delegate applicationShouldHandleReopen:NSApp hasVisibleWindows:YES]; });
     }},
    {"regarder ailleurs", [](Texte) { faire([] { [NSApp deactivate]; }); }},
    {"la page vient", laPageVient},
    {"la page rate",
     [](Texte) {
       faire([] { rater(vueWeb(), Etape::provisoire, NSURLErrorDomain, -1004, @"connexion perdue"); });
     }},
    {"le programme de la page meurt", [](Texte) { faire([] { planter(vueWeb()); }); }},
    {"la page dit", laPageDit},
    {"la page s’en va vers",
     [](Texte adresse) {
       faire([&] { suivre(vueWeb(), enNSString(adresse), WKNavigationTypeOther, false); });
     }},
    {"suivre le lien de la page",
     [](Texte) {
       faire([] { suivre(vueWeb(), @"https://exemple.fr/lien", WKNavigationTypeLinkActivated, false); });
     }},
    {"cliquer la notification", cliquerLaNotification},
    {"glisser des fichiers", glisserDesFichiers},
    {"glisser un texte", glisserUnTexte},
    {"survoler avec un fichier", survoler},
};

} // namespace

SCENARIO(parite) {
  // Rouverte par elle-même, c’est à parite.py, qui tient lieu de système, de la lancer.
  std::atexit([] {
    if (systemeNote().rouvertures == 1) std::cout << R"({"rouvrir": true})" << std::endl;
  });
  for (std::string ligne; std::getline(std::cin, ligne);) {
    if (ligne == "voir") {
      std::cout << lire(ceQuiSeVoit) << std::endl;
      continue;
    }
    const auto fin = ligne.find('\t');
    gestes.at(ligne.substr(0, fin))(ligne.substr(fin + 1));
    std::cout << "fait" << std::endl;
  }
}
