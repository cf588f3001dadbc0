// EssaiWebKit : ce qu’un scénario lit de la doublure de WebKit, et ce qu’il y fait arriver. Fil principal.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#import <WebKit/WebKit.h>

namespace essais {

struct Evaluation {
  std::string expression;
  void (^repondre)(id valeur, NSError* erreur);
};
struct Appel {
  std::string corps;
  NSDictionary* arguments;
  bool dansLaPage; // dans son monde, et le cadre principal
};

struct VueNotee {
  std::vector<NSURLRequest*> requetes;
  int arrets = 0;
  std::vector<Evaluation> evaluations;
  std::vector<Appel> appels;
  std::vector<std::string> glissements; // les opérations laissées à WebKit
  std::vector<std::string> actions;     // celles des menus
  bool lEditionPeut = true;             // ce que la validation répond
};
VueNotee& noteeDe(WKWebView* vue);

// Ce qui arrive à la page.
void commencer(WKWebView* vue);
void avancer(WKWebView* vue, double progres);
void finir(WKWebView* vue);
enum class Etape { provisoire, engagee };
void rater(WKWebView* vue, Etape etape, NSString* domaine, NSInteger code, NSString* description);
void planter(WKWebView* vue);
// Ce que la page écrit ; faux si personne n’écoute ce canal.
bool ecrire(WKWebView* vue, NSString* canal, id corps);
// Suivre un lien, ou en ouvrir un ailleurs : vrai si la vue doit y aller.
bool suivre(WKWebView* vue, NSString* adresse, WKNavigationType sorte, bool fenetreNeuve);
void ouvrirUneFenetre(WKWebView* vue, NSString* adresse);

} // namespace essais
