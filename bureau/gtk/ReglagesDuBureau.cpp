#include "bureau/gtk/ReglagesDuBureau.hpp"

#include "bureau/gtk/SignauxDuTerminal.hpp"
#include "socle/Texte.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include <gio/gio.h>

namespace keltrove::bureau {
namespace {

// Noms de « XDG_CURRENT_DESKTOP » et le programme qui montre le panneau ; le premier installé est pris.
struct Panneau {
  const char* bureau;
  const char* programme;
  const char* argument;
};
constexpr std::array panneaux{
    Panneau{"GNOME", "gnome-control-center", "notifications"},
    Panneau{"Unity", "gnome-control-center", "notifications"},
    Panneau{"KDE", "systemsettings", "kcm_notifications"},
    Panneau{"KDE", "systemsettings5", "kcm_notifications"},
    Panneau{"KDE", "kcmshell6", "kcm_notifications"},
    Panneau{"KDE", "kcmshell5", "kcm_notifications"},
};

bool ouvrir(const Panneau& panneau, const socle::Environnement& environnement) {
  auto entrees = environnement.entrees();
  std::vector<char*> variables;
  variables.reserve(entrees.size() + 1);
  for (auto& entree : entrees)
    variables.push_back(entree.data());
  variables.push_back(nullptr);
  const std::array arguments{panneau.programme, panneau.argument, static_cast<const char*>(nullptr)};
  constexpr auto options = static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH_FROM_ENVP |
                                                    G_SPAWN_STDOUT_TO_DEV_NULL | G_SPAWN_STDERR_TO_DEV_NULL);
  const SignauxRendus rendus;
  return g_spawn_async(nullptr, const_cast<char**>(arguments.data()), variables.data(), options, nullptr,
                       nullptr, nullptr, nullptr);
}

std::string identifiantPourGNOME() {
  std::string identifiant = KELTROVE_IDENTIFIANT;
  std::ranges::transform(identifiant, identifiant.begin(),
                         [](char c) { return g_ascii_isalnum(c) ? g_ascii_tolower(c) : '-'; });
  return identifiant;
}

} // namespace

bool lesNotificationsSontPermises() {
  constexpr const char* schema = "org.gnome.desktop.notifications.application";
  auto* source = g_settings_schema_source_get_default();
  auto* trouve = source != nullptr ? g_settings_schema_source_lookup(source, schema, TRUE) : nullptr;
  if (trouve == nullptr) return true; // demander un réglage dont le schéma manque arrête le programme
  const auto chemin = "/org/gnome/desktop/notifications/application/" + identifiantPourGNOME() + "/";
  auto* reglages = g_settings_new_full(trouve, nullptr, chemin.c_str());
  const bool permises = g_settings_get_boolean(reglages, "enable");
  g_object_unref(reglages);
  g_settings_schema_unref(trouve);
  return permises;
}

void ouvrirLesReglagesDeNotification(const socle::Environnement& environnement) {
  const auto bureaux = socle::decouper(environnement.lire("XDG_CURRENT_DESKTOP").value_or(""), ':',
                                       socle::MorceauxVides::ecartes);
  for (const auto& panneau : panneaux)
    if (std::ranges::find(bureaux, panneau.bureau) != bureaux.end() && ouvrir(panneau, environnement)) return;
}

} // namespace keltrove::bureau
