// VueFenetre : la fenêtre native et sa vue web, vues du comportement ; ObservateurDeLaVue, l’inverse.
//
// Chaque bureau en écrit une, aussi mince que possible : elle dessine les valeurs qu’on lui donne et rapporte
// ce qui arrive. Aucune opération n’attend ni ne signale d’échec de dessin : un échec de chargement revient
// par l’observateur, parfois pendant l’appel. Fil principal seulement.
#pragma once

#include "fenetre/ArticlesDeMenu.hpp"
#include "fenetre/EcranAttente.hpp"
#include "fenetre/LecteurDEcran.hpp"
#include "fenetre/Navigation.hpp"
#include "pont/MessageDeLaPage.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace keltrove::fenetre {

struct EtatBandeau {
  bool visible = false;
  std::string texte;
  bool operator==(const EtatBandeau&) const = default;
};

// Pourquoi une navigation n’aboutit pas, parfois longtemps après avoir fini : le programme qui dessine la
// page peut mourir sous une page affichée.
enum class CauseDEchec {
  chargement,
  annulation, // remplacée par une autre ou arrêtée à notre demande
  // Du programme qui dessine la page.
  lancementRefuse,
  memoireDepassee,
  arret,
};
struct EchecDeNavigation {
  CauseDEchec cause = CauseDEchec::chargement;
  std::string description; // pour un chargement, le texte du système
};

// Une adresse que la page veut ouvrir, sous sa forme canonique (WHATWG URL).
struct DemandeDAdresse {
  std::string adresse;
  bool fenetreNeuve = false;
  Geste geste = Geste::aucun;
};

// Ce que la vue rapporte, dès qu’elle existe ; plus rien une fois sa destruction commencée.
class ObservateurDeLaVue {
public:
  // Une navigation ratée n’est jamais rapportée comme finie. Avancer : il vient encore
  // quelque chose de la page.
  virtual void quandNavigationCommence() = 0;
  virtual void quandNavigationAvance() = 0;
  virtual void quandNavigationFinie() = 0;
  virtual void quandNavigationRatee(const EchecDeNavigation& echec) = 0;

  // Les boutons de l’écran d’attente, et l’article « Recharger la page ».
  virtual void quandOnReessaie() = 0;
  virtual void quandOnBasculeLeDetail() = 0;
  virtual void quandOnRecharge() = 0;

  // Sur l’un des canaux que la vue a ouverts à la page : celui du pont et celui du lecteur.
  virtual void quandLaPageEcrit(const std::string& canal, const pont::MessageDeLaPage& message) = 0;
  // Faux : la vue n’en fait rien, l’observateur s’en est chargé.
  virtual bool laPageVeutOuvrir(const DemandeDAdresse& demande) = 0;
  // Elle seule lit le presse-papiers ; aucune autre permission n’est donnée à personne.
  virtual bool estLaPage(const std::string& adresse) const = 0;
  // D’un dépôt, tant de fichiers ont un nom que la page ne peut recevoir ; les autres y sont.
  virtual void quandDesFichiersSontIllisibles(std::size_t combien) = 0;
  // L’utilisateur est-il devant l’application, fût-ce dans un de ses menus ou une de ses boîtes ?
  virtual void quandLeRegardChange(bool ici) = 0;
  // Dès qu’on le sait, puis quand cela change.
  virtual void quandLeLecteurDEcranChange(const LecteurDEcran& lecteur) = 0;

protected:
  ~ObservateurDeLaVue() = default;
};

class VueFenetre {
public:
  virtual ~VueFenetre() = default;

  // La valeur entière à chaque fois. Sous un écran visible, la page ne reçoit ni touche, ni focus, ni dépôt.
  virtual void dessiner(const EtatEcran& etat) = 0;
  virtual void dessiner(const EtatBandeau& etat) = 0;

  // Traduit la table en menus et raccourcis du système, une fois. Chaque action va à qui a le clavier, et
  // reste grisée quand elle ne peut rien ; seule « rechargerVraiment » va à l’observateur, et « terminate »
  // prend le chemin ordinaire de la fermeture.
  virtual void poserLesMenus(const std::vector<Menus::Menu>& menus) = 0;

  // Montre la fenêtre devant les autres de l’application, avec le clavier.
  virtual void mettreDevant() = 0;
  // Montre la fenêtre derrière les autres, sans le clavier ; rend son numéro, 0 si le système n’en donne pas.
  virtual std::int64_t mettreDerriere() = 0;

  // Demande l’adresse par GET, sans rien prendre d’aucun cache ni ajouter d’en-tête qui compte pour le
  // serveur. Remplace le chargement en cours. L’observateur de la vue tient lui-même le délai de soixante
  // secondes : la vue peut avoir le sien, jamais plus court.
  virtual void charger(const std::string& adresse) = 0;
  // L’observateur en reçoit une annulation, ou rien s’il n’y avait rien à arrêter.
  virtual void arreterLeChargement() = 0;
  // Évalue une expression dans la page ; rend sa valeur si c’est un texte, rien sinon ou en cas d’erreur.
  // `fini` vient une fois, tout de suite s’il n’y a encore aucune page, et peut venir après qui l’a demandé.
  virtual void evaluer(const std::string& expression,
                       std::function<void(std::optional<std::string>)> fini) = 0;

  // Fait lire ce texte au lecteur d’écran ; un bureau qui ne le sait pas n’en fait rien.
  virtual void annoncer(const std::string& texte) = 0;
};

} // namespace keltrove::fenetre
