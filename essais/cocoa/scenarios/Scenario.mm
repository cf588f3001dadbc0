#include "Scenario.hpp"

#include "bureau/cocoa/BoucleCocoa.hpp"
#include "bureau/cocoa/Textes.hpp"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <future>
#include <sstream>
#include <thread>

#include <unistd.h>

namespace essais {
namespace {

using namespace std::chrono_literals;
namespace Journal = keltrove::socle::Journal;

constexpr auto patience = 100s;
constexpr auto entreDeuxRegards = 10ms;

[[noreturn]] void echouer(const std::string& phrase) {
  std::fprintf(stderr, "ÉCHEC : %s\n", phrase.c_str());
  ::_exit(1);
}

} // namespace

void faire(std::function<void()> tache) {
  std::promise<void> faite;
  keltrove::bureau::BoucleCocoa().poster([&] {
    tache();
    faite.set_value();
  });
  if (faite.get_future().wait_for(patience) != std::future_status::ready)
    echouer("le fil principal est figé");
}

void demander(std::function<void()> tache) {
  static keltrove::socle::Minuteur rendezVous;
  faire([&] { rendezVous = keltrove::bureau::BoucleCocoa().apres(0, std::move(tache)); });
}

void attendre(const std::string& quoi, std::function<bool()> vrai) {
  const auto fin = std::chrono::steady_clock::now() + patience;
  while (!lire(vrai)) {
    if (std::chrono::steady_clock::now() > fin) echouer("jamais venu : " + quoi);
    std::this_thread::sleep_for(entreDeuxRegards);
  }
}

void exiger(bool vrai, const std::string& quoi) {
  if (!vrai) echouer(quoi);
}

void exigerEgal(const std::string& obtenu, const std::string& voulu, const std::string& quoi) {
  if (obtenu != voulu) echouer(quoi + "\n  obtenu : " + obtenu + "\n  voulu  : " + voulu);
}

int fois(const std::string& etape) {
  const auto etapes = Journal::etapes();
  return static_cast<int>(std::ranges::count_if(
      etapes, [&](const auto& une) { return une.at("etape") == Journal::Valeur(etape); }));
}

void attendreLEtape(const std::string& etape, int combien) {
  attendre("l’étape " + etape, [&] { return fois(etape) >= combien; });
}

std::string detail(const std::string& etape, const std::string& cle) {
  std::string valeur;
  for (const auto& une : Journal::etapes())
    if (une.at("etape") == Journal::Valeur(etape) && une.contains(cle))
      valeur = Journal::resume({{cle, une.at(cle)}}).substr(cle.size() + 1);
  return valeur;
}

FenetrePrincipale* controleur() {
  for (NSWindow* une in NSApp.windows)
    if ([une.delegate isKindOfClass:[FenetrePrincipale class]]) return (FenetrePrincipale*)une.delegate;
  echouer("aucune fenêtre de l’application");
}

std::string texte(NSString* chaine) {
  return keltrove::bureau::enUTF8(chaine);
}

void presser(NSString* caractere, NSUInteger modificateurs) {
  // Le gestionnaire de fenêtres peut encore nous le rendre.
  if (fenetre().isVisible) [fenetre() makeKeyWindow];
  for (NSEventType sorte : {NSKeyDown, NSKeyUp})
    [NSApp sendEvent:[NSEvent keyEventWithType:sorte
                                            location:NSZeroPoint
                                       modifierFlags:modificateurs
                                           timestamp:0
                                        windowNumber:fenetre().windowNumber
                                             context:nil
                                          characters:caractere
                         charactersIgnoringModifiers:caractere
                                           isARepeat:NO
                                             keyCode:0]];
}

void afficherLaPage(std::size_t combien) {
  attendre("une page demandée", [combien] { return page().requetes.size() >= combien; });
  const int dejaLa = fois("page-affichee");
  faire([] {
    commencer(vueWeb());
    avancer(vueWeb(), 0.5);
    finir(vueWeb());
  });
  exiger(fois("page-affichee") == dejaLa + 1, "la page compte comme affichée");
}

void quitter() {
  demander([] { presser(@"q", NSCommandKeyMask); });
}

namespace {
std::string aCoteDuServeur(const std::string& nom) {
  const std::string executable = std::getenv("KELTROVE_EXECUTABLE_D_ESSAI");
  return executable.substr(0, executable.rfind('/')) + "/ressources/keltrove/" + nom;
}
} // namespace

void poserUnFichier(const std::string& nom) {
  std::ofstream(aCoteDuServeur(nom)) << nom;
}

std::string lireUnFichier(const std::string& nom) {
  std::ostringstream lu;
  lu << std::ifstream(aCoteDuServeur(nom)).rdbuf();
  return lu.str();
}

int port() {
  return std::stoi(std::getenv("KELTROVE_PORT_D_ESSAI"));
}

} // namespace essais
