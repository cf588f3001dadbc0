// L’entrée du bureau.

#include "app/ModuleBureau.hpp"
#include "bureau/cocoa/ApplicationCocoa.hpp"
#include "bureau/cocoa/BoucleCocoa.hpp"
#include "moteur/MoteurServeur.hpp"
#include "socle/Executable.hpp"

#include <cstdlib>

using namespace keltrove;

extern "C" int keltroveLancerLeBureau(const app::AppelDuBureau& appel) {
  @autoreleasepool {
    moteur::MoteurServeur::Contexte contexte{
        .boucle = std::make_shared<bureau::BoucleCocoa>(),
        .horloge = std::make_shared<socle::HorlogeSysteme>(),
        .emplacements = moteur::Emplacements(socle::dossierDesRessources(appel.executable)),
        .environnement = socle::Environnement::duProcessus(),
    };
    const auto boucle = contexte.boucle;
    bureau::ApplicationCocoa application(std::make_shared<moteur::MoteurServeur>(std::move(contexte)),
                                         boucle);
    application.faireTourner();
  }
  return EXIT_SUCCESS;
}
