#include "bureau/gtk/Retenu.hpp"

#include "bureau/gtk/DeGLib.hpp"
#include "socle/Fichiers.hpp"

namespace keltrove::bureau {
namespace {

constexpr const char* groupeDuCadre = "cadre";
constexpr std::size_t tailleMaximale = 4096;

std::string cheminDe(const char* racine, const std::string& nom) {
  return socle::ajouterComposant(socle::ajouterComposant(racine, "keltrove"), nom);
}

void ecrire(GKeyFile* cles, const std::string& fichier) {
  gsize taille = 0;
  const TexteDeGLib texte(g_key_file_to_data(cles, &taille, nullptr));
  socle::ecrireFichier(fichier, {texte.get(), taille});
}

} // namespace

std::optional<fenetre::Cadre> lireLeCadre(const std::string& nom) {
  const auto contenu = socle::lireFichier(cheminDe(g_get_user_state_dir(), nom), tailleMaximale);
  const FichierDeCles cles(g_key_file_new());
  if (!contenu ||
      !g_key_file_load_from_data(cles.get(), contenu->data(), contenu->size(), G_KEY_FILE_NONE, nullptr))
    return std::nullopt;
  return fenetre::Cadre{.largeur = g_key_file_get_integer(cles.get(), groupeDuCadre, "largeur", nullptr),
                        .hauteur = g_key_file_get_integer(cles.get(), groupeDuCadre, "hauteur", nullptr),
                        .agrandie =
                            g_key_file_get_boolean(cles.get(), groupeDuCadre, "agrandie", nullptr) != 0};
}

void retenirLeCadre(const std::string& nom, const fenetre::Cadre& cadre) {
  const FichierDeCles cles(g_key_file_new());
  g_key_file_set_integer(cles.get(), groupeDuCadre, "largeur", cadre.largeur);
  g_key_file_set_integer(cles.get(), groupeDuCadre, "hauteur", cadre.hauteur);
  g_key_file_set_boolean(cles.get(), groupeDuCadre, "agrandie", cadre.agrandie);
  ecrire(cles.get(), cheminDe(g_get_user_state_dir(), nom));
}

void retenirUnDrapeau(const std::string& nom) {
  const auto chemin = cheminDe(g_get_user_config_dir(), "preferences");
  const FichierDeCles cles(g_key_file_new());
  g_key_file_load_from_file(cles.get(), chemin.c_str(), G_KEY_FILE_KEEP_COMMENTS, nullptr);
  g_key_file_set_boolean(cles.get(), "drapeaux", nom.c_str(), TRUE);
  ecrire(cles.get(), chemin);
}

} // namespace keltrove::bureau
