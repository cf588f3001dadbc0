#include "bureau/gtk/Preparation.hpp"

#include "bureau/gtk/BacASable.hpp"
#include "bureau/gtk/BusDeSession.hpp"
#include "bureau/gtk/CurseurDeTexte.hpp"
#include "bureau/gtk/EssaiDeLancement.hpp"
#include "bureau/gtk/RenduSansCarte.hpp"
#include "bureau/gtk/SignauxDuTerminal.hpp"
#include "fenetre/Apparence.hpp"

#include <gtk/gtk.h>

namespace keltrove::bureau {

std::expected<Prete, const char*> preparerLaBoiteAOutils() {
  // WebKit lance ses programmes dès que la vue existe, et interrompt tout s’il ne le peut.
  if (!peutLancerUnProcessus())
    return std::unexpected("Keltrove ne peut pas s’ouvrir : le système n’a plus de quoi lancer un programme. "
                           "Fermez-en quelques-uns, puis réessayez.");
  retenirLesSignauxDuTerminal();
  choisirLeRendu();
  const Prete prete{.sansBacASable = renoncerAuBacASableRefuse()};
  ecarterLesBusAbsents();
  g_set_prgname("keltrove");
  g_set_application_name(fenetre::Apparence::nomDeLApplication);
  if (!gtk_init_check())
    return std::unexpected("Keltrove n’a trouvé aucun écran où s’ouvrir : lancez-le depuis une session "
                           "graphique, ou réglez DISPLAY ou WAYLAND_DISPLAY.");
  retirerDesTouchesAuxTextes();
  return prete;
}

} // namespace keltrove::bureau
