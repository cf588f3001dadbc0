// VueFenetre : la fenêtre native et sa vue web, vues du comportement.
//
// Chaque bureau en écrit une, aussi mince que possible : elle dessine les valeurs qu’on lui donne et rapporte
// ce qui arrive. Fil principal seulement.
#pragma once

#include "fenetre/EcranAttente.hpp"
#include "fenetre/LecteurDEcran.hpp"
#include "fenetre/Menus.hpp"

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

struct EchecDeNavigation {
  bool annulee = false;    // remplacée par une autre ou arrêtée à notre demande
  std::string description; // le texte du système
};

class VueFenetre {
public:
  virtual ~VueFenetre() = default;

  virtual void dessiner(const EtatEcran& etat) = 0;
  virtual void dessiner(const EtatBandeau& etat) = 0;

  // Traduit la table en menus et raccourcis du système, une fois. Chaque action va à qui a le clavier, et
  // reste grisée quand elle ne peut rien ; seule « rechargerVraiment » revient par quandOnRecharge, «
  // terminate » prend le chemin ordinaire de la fermeture.
  virtual void poserLesMenus(const std::vector<Menus::Menu>& menus) = 0;

  // Montre la fenêtre devant les autres, avec le clavier.
  virtual void mettreDevant() = 0;
  // Montre la fenêtre derrière les autres, sans le clavier ; rend son numéro, 0 si le système n’en donne pas.
  virtual unsigned long mettreDerriere() = 0;

  // Charge l’adresse sans rien prendre d’aucun cache. Remplace le chargement en cours.
  virtual void charger(const std::string& adresse) = 0;
  virtual void arreterLeChargement() = 0;
  // Évalue une expression dans la page ; rend sa valeur si c’est un texte, rien sinon ou en cas d’erreur.
  virtual void evaluer(const std::string& expression,
                       std::function<void(std::optional<std::string>)> fini) = 0;

  // Fait lire ce texte au lecteur d’écran ; un bureau qui ne le sait pas n’en fait rien.
  virtual void annoncer(const std::string& /*texte*/) {}

  // Ce que la vue rapporte. Une navigation ratée n’est jamais rapportée comme finie.
  std::function<void()> quandNavigationCommence;
  std::function<void()> quandNavigationAvance;
  std::function<void()> quandNavigationFinie;
  std::function<void(const EchecDeNavigation&)> quandNavigationRatee;
  std::function<void()> quandOnReessaie;
  std::function<void()> quandOnBasculeLeDetail;
  std::function<void()> quandOnRecharge;
  // Rien sur ce bureau ne sait ouvrir un lien que la page a demandé.
  std::function<void(const std::string& adresse)> quandUnLienNeSOuvrePas;
  // Dès qu’on le sait, puis quand cela change.
  std::function<void(const LecteurDEcran& lecteur)> quandLeLecteurDEcranChange;
  // Un message de la page : le canal, et son corps en JSON s’il en a un.
  std::function<void(const std::string& canal, const std::optional<std::string>& corps)> quandLaPageEcrit;
};

} // namespace keltrove::fenetre
