// L’entrée du bureau.

#include "app/ModuleBureau.hpp"
#include "bureau/cocoa/ApplicationCocoa.hpp"
#include "bureau/cocoa/BoucleCocoa.hpp"
#include "moteur/MoteurServeur.hpp"
#include "socle/Executable.hpp"

#include <cstdlib>

using namespace keltrove;

extern "C" int keltroveLancerLeBureau(const char* executable) {
  @autoreleasepool {
    moteur::MoteurServeur::Contexte contexte{
        .boucle = std::make_shared<bureau::BoucleCocoa>(),
        .horloge = std::make_shared<socle::HorlogeSysteme>(),
        .emplacements = moteur::Emplacements(socle::dossierDesRessources(executable)),
        .environnement = socle::Environnement::duProcessus(),
    };
    const auto boucle = contexte.boucle;
    bureau::ApplicationCocoa application(std::make_shared<moteur::MoteurServeur>(std::move(contexte)),
                                         boucle);
    application.faireTourner();
  }
  return EXIT_SUCCESS;
}
