// EcranAttente : l’écran qui couvre la page tant qu’il n’y en a pas à montrer.
//
// Deux visages : l’attente (titre, phrase, roue) et le problème (titre, phrase, conseil, « Réessayer »,
// détail à déplier). L’écran calcule une valeur, EtatEcran, et la remet à sa vue ; la vue la dessine et ne
// décide rien. Chaque changement redessine, fût-ce la même valeur. Fil principal seulement.
#pragma once

#include "moteur/ErreurServeur.hpp"

#include <functional>
#include <optional>
#include <string>

namespace keltrove::fenetre {

// Tout ce que la vue doit montrer. Un texte vide n’occupe aucune place. Le détail vient d’un serveur : il
// peut compter quelques mégaoctets.
struct EtatEcran {
  bool visible = true; // sinon l’écran s’efface, et la page reçoit de nouveau la frappe
  bool roue = false;   // l’on attend
  std::string titre;
  std::string phrase;
  std::string conseil;
  bool boutonReessayer = false; // la touche Entrée le presse, où que soit le clavier sur l’écran
  std::string titreDuBoutonReessayer = "Réessayer";
  bool boutonDetail = false; // déplie le cadre, ou le replie
  std::string titreDuBoutonDetail = "Voir le détail";
  bool cadreDetail = false;
  std::string detail;
  bool operator==(const EtatEcran&) const = default;

  // Qui reçoit le clavier quand l’état change, à moins qu’un autre élément que l’écran
  // montre encore ne l’ait.
  enum class Clavier { page, ecran, reessayer };
  Clavier clavier() const;
};

class EcranAttente {
public:
  // À poser par qui le crée ; vides, rien ne se dessine ni ne se réessaie.
  std::function<void(const EtatEcran&)> quandOnDessine;
  std::function<void()> quandOnReessaie;

  // Le visage d’attente, sans bouton ; un détail déplié se referme.
  void montrerAttente(const std::string& titre, const std::string& phrase);
  // Le détail se déplie sur demande ; un détail vide n’a pas de bouton.
  void montrerProbleme(const std::string& titre, const std::string& phrase, const std::string& conseil,
                       const std::optional<std::string>& detail);
  // De même, avec les textes de l’erreur et ce que le serveur a écrit.
  void montrerErreur(const moteur::ErreurServeur& erreur);
  // La page se voit ; les textes restent tels qu’ils étaient.
  void cacher();

  // Les boutons.
  void reessayer() const;
  void basculerDetail();

  const EtatEcran& etat() const { return etat_; }

private:
  void dessiner() const;

  EtatEcran etat_;
};

} // namespace keltrove::fenetre
