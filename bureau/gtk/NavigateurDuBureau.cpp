#include "bureau/gtk/NavigateurDuBureau.hpp"

#include "bureau/gtk/SignauxDuTerminal.hpp"

#include <memory>
#include <string_view>

#include <gdk/gdk.h>
#include <unistd.h>

namespace keltrove::bureau {
namespace {

void rendreLEnvironnement(GAppLaunchContext* contexte, const socle::Environnement& voulu) {
  for (char** entree = ::environ; *entree != nullptr; ++entree) {
    const std::string nom(std::string_view(*entree).substr(0, std::string_view(*entree).find('=')));
    if (const auto valeur = voulu.lire(nom))
      g_app_launch_context_setenv(contexte, nom.c_str(), valeur->c_str());
    else
      g_app_launch_context_unsetenv(contexte, nom.c_str());
  }
}

} // namespace

void ouvrirDansLeNavigateur(const std::string& adresse, const socle::Environnement& environnement,
                            std::function<void()> rate) {
  struct Suite {
    SignauxRendus rendus; // le lancement a lieu plus tard, sur ce même fil
    std::function<void()> rate;
  };
  auto* contexte = G_APP_LAUNCH_CONTEXT(gdk_display_get_app_launch_context(gdk_display_get_default()));
  rendreLEnvironnement(contexte, environnement);
  g_app_info_launch_default_for_uri_async(
      adresse.c_str(), contexte, nullptr,
      [](GObject*, GAsyncResult* resultat, gpointer donnees) {
        const std::unique_ptr<Suite> suite(static_cast<Suite*>(donnees));
        if (!g_app_info_launch_default_for_uri_finish(resultat, nullptr)) suite->rate();
      },
      new Suite{{}, std::move(rate)});
  g_object_unref(contexte);
}

} // namespace keltrove::bureau
