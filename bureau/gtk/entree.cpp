// L’entrée du module : la boîte à outils une fois prête, l’application.

#include "app/ModuleBureau.hpp"
#include "bureau/gtk/ApplicationGtk.hpp"
#include "bureau/gtk/BoucleGlib.hpp"
#include "bureau/gtk/Preparation.hpp"
#include "bureau/gtk/Reouverture.hpp"
#include "moteur/MoteurServeur.hpp"
#include "socle/Executable.hpp"
#include "socle/SortieDErreur.hpp"

#include <cstdlib>
#include <string>

using namespace keltrove;

extern "C" int keltroveLancerLeBureau(const char* executable) {
  const auto ressources = socle::dossierDesRessources(executable);
  moteur::MoteurServeur::Contexte contexte{
      .boucle = std::make_shared<bureau::BoucleGlib>(),
      .horloge = std::make_shared<socle::HorlogeSysteme>(),
      .emplacements = moteur::Emplacements(ressources),
      .environnement =
          socle::Environnement::duProcessus(), // avant nos propres réglages, qui ne le regardent pas
  };
  const auto preparation = bureau::preparerLaBoiteAOutils(ressources);
  if (!preparation) {
    socle::direSurLaSortieDErreur(std::string(preparation.error()) + '\n');
    return EXIT_FAILURE;
  }
  const auto boucle = contexte.boucle;
  const auto environnement = contexte.environnement;
  auto moteur = std::make_shared<moteur::MoteurServeur>(std::move(contexte));
  bureau::ApplicationGtk application(std::move(moteur), boucle, environnement);
  application.sInscrire();
  // Une relance qui ne fait que ramener la fenêtre n’a rien à dire.
  if (preparation->sansBacASable && !application.is_remote())
    socle::direSurLaSortieDErreur(
        "Keltrove : ce système refuse le bac à sable de la page (bubblewrap) ; elle s’affiche sans lui.\n");
  // Aucun argument n’est pour GTK.
  const int etat = application.run();
  if (application.aRouvrir()) bureau::rouvrir(executable, environnement);
  return etat;
}
