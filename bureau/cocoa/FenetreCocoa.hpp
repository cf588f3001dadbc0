// FenetreCocoa : la fenêtre native. De bas en haut : la page, l’écran d’attente, le bandeau.
#pragma once

#include "bureau/cocoa/EcranCocoa.hpp"
#include "bureau/cocoa/VueWebCocoa.hpp"
#include "fenetre/VueFenetre.hpp"

#import <AppKit/AppKit.h>
#import <WebKit/WebKit.h>

// Construit la fenêtre et ce qu’elle contient, et rapporte à l’observateur ce qui leur arrive.
@interface FenetrePrincipale : NSObject <NSWindowDelegate, WKScriptMessageHandler>

@property(nonatomic, readonly) NSWindow* fenetre;
@property(nonatomic, readonly) VueWebDepot* vueWeb;
@property(nonatomic, readonly) EcranAttente* ecran;
@property(nonatomic, readonly) NSTextField* bandeau;
@property(nonatomic, readonly) keltrove::fenetre::ObservateurDeLaVue* observateur;

- (instancetype)initAvecObservateur:(keltrove::fenetre::ObservateurDeLaVue*)observateur;
// L’action du menu.
- (void)rechargerVraiment:(id)source;
// Plus rien n’est rapporté ensuite.
- (void)quitterLObservateur;

@end

namespace keltrove::bureau {

class FenetreCocoa final : public fenetre::VueFenetre {
public:
  // L’observateur lui survit.
  explicit FenetreCocoa(fenetre::ObservateurDeLaVue& observateur);
  FenetreCocoa(const FenetreCocoa&) = delete;
  FenetreCocoa& operator=(const FenetreCocoa&) = delete;
  ~FenetreCocoa() override;

  void dessiner(const fenetre::EtatEcran& etat) override;
  void dessiner(const fenetre::EtatBandeau& etat) override;
  void poserLesMenus(const std::vector<fenetre::Menus::Menu>& menus) override;
  void mettreDevant() override;
  std::int64_t mettreDerriere() override;
  void charger(const std::string& adresse) override;
  void arreterLeChargement() override;
  void evaluer(const std::string& expression, std::function<void(std::optional<std::string>)> fini) override;
  void annoncer(const std::string& texte) override;

private:
  void donnerLeClavier(fenetre::EtatEcran::Clavier clavier);

  FenetrePrincipale* const controleur_;
};

} // namespace keltrove::bureau
