#include "bureau/gtk/DrapeauxRetenus.hpp"

#include "bureau/gtk/DeGLib.hpp"
#include "socle/Fichiers.hpp"

namespace keltrove::bureau {

void retenirUnDrapeau(const std::string& nom) {
  const auto chemin =
      socle::ajouterComposant(socle::ajouterComposant(g_get_user_config_dir(), "keltrove"), "preferences");
  const FichierDeCles fichier(g_key_file_new());
  g_key_file_load_from_file(fichier.get(), chemin.c_str(), G_KEY_FILE_KEEP_COMMENTS, nullptr);
  g_key_file_set_boolean(fichier.get(), "drapeaux", nom.c_str(), TRUE);
  gsize taille = 0;
  const TexteDeGLib texte(g_key_file_to_data(fichier.get(), &taille, nullptr));
  socle::ecrireFichier(chemin, {texte.get(), taille});
}

} // namespace keltrove::bureau
