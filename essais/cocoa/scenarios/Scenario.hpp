// Scenario : un fil d’essai qui mène l’application, comme un utilisateur devant elle.
//
// Chaque scénario a son processus, et joue sur un fil à lui ; ce qu’il regarde ou fait dans l’application se
// passe sur le fil principal, entre deux événements. La première phrase fausse arrête le processus.
#pragma once

#include "EssaiNotifications.hpp"
#include "EssaiSysteme.hpp"
#include "EssaiWebKit.hpp"
#include "bureau/cocoa/FenetreCocoa.hpp"
#include "socle/Journal.hpp"

#include <functional>
#include <string>
#include <type_traits>

#import <AppKit/AppKit.h>

namespace essais {

struct Inscription {
  Inscription(const char* nom, void (*jouer)());
};

#define SCENARIO(nom)                                                                                        \
  static void nom();                                                                                         \
  static const essais::Inscription inscription_##nom(#nom, nom);                                             \
  static void nom()

// Sur le fil principal, et attend que ce soit fait.
void faire(std::function<void()> tache);
// Sur le fil principal, sans attendre, et d’où la boucle peut tourner de nouveau : une fermeture s’y demande.
void demander(std::function<void()> tache);
template <typename Fonction>
auto lire(Fonction fonction) {
  std::invoke_result_t<Fonction> valeur{};
  faire([&] { valeur = fonction(); });
  return valeur;
}

// À répéter sur le fil principal jusqu’à ce que ce soit vrai.
void attendre(const std::string& quoi, std::function<bool()> vrai);
void exiger(bool vrai, const std::string& quoi);
void exigerEgal(const std::string& obtenu, const std::string& voulu, const std::string& quoi);

// Le journal.
int fois(const std::string& etape);
void attendreLEtape(const std::string& etape, int combien = 1);
std::string detail(const std::string& etape, const std::string& cle); // de la dernière ; vide si absent

// L’application, sur le fil principal seulement.
FenetrePrincipale* controleur();
inline NSWindow* fenetre() {
  return controleur().fenetre;
}
inline VueWebDepot* vueWeb() {
  return controleur().vueWeb;
}
inline EcranAttente* ecran() {
  return controleur().ecran;
}
inline VueNotee& page() {
  return noteeDe(vueWeb());
}
std::string texte(NSString* chaine);

inline std::string titre() {
  return texte(ecran().titre.stringValue);
}

// À côté du code du serveur, qui le regarde ; et ce qu’il y écrit.
void poserUnFichier(const std::string& nom);
std::string lireUnFichier(const std::string& nom);
int port();

// Une touche, telle que la fenêtre du clavier la reçoit.
void presser(NSString* caractere, NSUInteger modificateurs = 0);

// Joue, comme WebKit le ferait, la page demandée la dernière, dès qu’il y en a `combien`.
void afficherLaPage(std::size_t combien = 1);

// Ce que l’utilisateur fait pour partir. Le processus finit ensuite.
void quitter();

} // namespace essais
