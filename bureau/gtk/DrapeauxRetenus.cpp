#include "bureau/gtk/DrapeauxRetenus.hpp"

#include "socle/Fichiers.hpp"

#include <memory>

#include <glib.h>

namespace keltrove::bureau {

void retenirUnDrapeau(const std::string& nom) {
  const auto chemin =
      socle::ajouterComposant(socle::ajouterComposant(g_get_user_config_dir(), "keltrove"), "preferences");
  const std::unique_ptr<GKeyFile, decltype(&g_key_file_unref)> fichier(g_key_file_new(), &g_key_file_unref);
  g_key_file_load_from_file(fichier.get(), chemin.c_str(), G_KEY_FILE_KEEP_COMMENTS, nullptr);
  g_key_file_set_boolean(fichier.get(), "drapeaux", nom.c_str(), TRUE);
  gsize taille = 0;
  const std::unique_ptr<char, decltype(&g_free)> texte(g_key_file_to_data(fichier.get(), &taille, nullptr),
                                                       &g_free);
  socle::ecrireFichier(chemin, {texte.get(), taille});
}

} // namespace keltrove::bureau
