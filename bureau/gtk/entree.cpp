// L’entrée du module : tout ce qui doit précéder la boîte à outils, puis l’application.

#include "app/ModuleBureau.hpp"
#include "bureau/gtk/ApplicationGtk.hpp"
#include "bureau/gtk/BacASable.hpp"
#include "bureau/gtk/BoucleGlib.hpp"
#include "bureau/gtk/BusDeSession.hpp"
#include "bureau/gtk/CurseurDeTexte.hpp"
#include "bureau/gtk/EssaiDeLancement.hpp"
#include "bureau/gtk/RenduSansCarte.hpp"
#include "bureau/gtk/Reouverture.hpp"
#include "bureau/gtk/SignauxDuTerminal.hpp"
#include "fenetre/Apparence.hpp"
#include "moteur/MoteurServeur.hpp"
#include "socle/Executable.hpp"
#include "socle/SortieDErreur.hpp"

#include <cstdlib>

#include <gtk/gtk.h>
#include <unistd.h>

namespace {

using namespace keltrove;

// WebKit lance ses programmes dès que la vue existe, et interrompt tout s’il ne le peut.
constexpr const char* sansProcessus =
    "Keltrove ne peut pas s’ouvrir : le système n’a plus de quoi lancer un programme. Fermez-en "
    "quelques-uns, puis réessayez.\n";
constexpr const char* sansEcran =
    "Keltrove n’a trouvé aucun écran où s’ouvrir : lancez-le depuis une session graphique, ou réglez "
    "DISPLAY ou WAYLAND_DISPLAY.\n";
constexpr const char* sansBac =
    "Keltrove : ce système refuse le bac à sable de la page (bubblewrap) ; elle s’affiche sans lui.\n";

int finirSur(const char* phrase) {
  socle::direSurLaSortieDErreur(phrase);
  return EXIT_FAILURE;
}

} // namespace

extern "C" [[gnu::visibility("default")]] int keltroveLancerLeBureau(const app::AppelDuBureau& appel) {
  moteur::MoteurServeur::Contexte contexte{
      .boucle = std::make_shared<bureau::BoucleGlib>(),
      .horloge = std::make_shared<socle::HorlogeSysteme>(),
      .emplacements = moteur::Emplacements(socle::dossierDesRessources(appel.executable)),
      .environnement = socle::Environnement(::environ), // avant nos propres réglages, qui ne le regardent pas
  };
  if (!bureau::peutLancerUnProcessus()) return finirSur(sansProcessus);
  bureau::retenirLesSignauxDuTerminal();
  bureau::choisirLeRendu();
  const bool sansBacASable = bureau::renoncerAuBacASableRefuse();
  bureau::ecarterLesBusAbsents();
  g_set_prgname("keltrove");
  g_set_application_name(fenetre::Apparence::nomDeLApplication);
  if (!gtk_init_check()) return finirSur(sansEcran);
  bureau::retirerDesTouchesAuxTextes();
  const auto boucle = contexte.boucle;
  const auto environnement = contexte.environnement;
  auto moteur = std::make_shared<moteur::MoteurServeur>(std::move(contexte));
  bureau::ApplicationGtk application(std::move(moteur), boucle, environnement);
  application.sInscrire();
  // Une relance qui ne fait que ramener la fenêtre n’a rien à dire.
  if (sansBacASable && !application.is_remote()) socle::direSurLaSortieDErreur(sansBac);
  // Aucun argument n’est pour GTK.
  const int etat = application.run();
  if (application.aRouvrir()) bureau::rouvrir(appel.executable, environnement);
  return etat;
}
