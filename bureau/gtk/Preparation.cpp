#include "bureau/gtk/Preparation.hpp"

#include "bureau/gtk/BacASable.hpp"
#include "bureau/gtk/BusDeSession.hpp"
#include "bureau/gtk/CurseurDeTexte.hpp"
#include "bureau/gtk/EssaiDeLancement.hpp"
#include "bureau/gtk/RenduSansCarte.hpp"
#include "bureau/gtk/SignauxDuTerminal.hpp"
#include "fenetre/Apparence.hpp"
#include "socle/Fichiers.hpp"

#include <gtk/gtk.h>

namespace keltrove::bureau {
namespace {

// Les bureaux ne cherchent que là où un paquet s’installe : la fenêtre d’une copie posée ailleurs n’y aurait
// pas la sienne.
void connaitreNosIcones(const std::string& ressources) {
  const auto notres = socle::ajouterComposant(socle::dossierDe(ressources), "icons");
  auto* theme = gtk_icon_theme_get_for_display(gdk_display_get_default());
  char** connus = gtk_icon_theme_get_search_path(theme);
  // Un dossier ajouté fait relire tout le thème.
  if (!g_strv_contains(connus, notres.c_str())) gtk_icon_theme_add_search_path(theme, notres.c_str());
  g_strfreev(connus);
}

} // namespace

std::expected<Prete, const char*> preparerLaBoiteAOutils(const std::optional<std::string>& ressources) {
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
  if (ressources) connaitreNosIcones(*ressources);
  return prete;
}

} // namespace keltrove::bureau
