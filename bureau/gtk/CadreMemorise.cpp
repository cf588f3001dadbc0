#include "bureau/gtk/CadreMemorise.hpp"

#include "fenetre/Apparence.hpp"
#include "socle/Fichiers.hpp"

#include <memory>

#include <glib.h>

namespace keltrove::bureau {

namespace Apparence = fenetre::Apparence;

namespace {

constexpr const char* groupe = "cadre";
constexpr int coteMaximal = 32767; // limite de X11
constexpr std::size_t tailleMaximale = 4096;

std::string chemin(const std::string& nom) {
  return socle::ajouterComposant(socle::ajouterComposant(g_get_user_state_dir(), "keltrove"), nom);
}

using FichierDeCles = std::unique_ptr<GKeyFile, decltype(&g_key_file_unref)>;

FichierDeCles nouveauFichier() {
  return {g_key_file_new(), &g_key_file_unref};
}

} // namespace

std::optional<Cadre> lireLeCadre(const std::string& nom) {
  const auto contenu = socle::lireFichier(chemin(nom), tailleMaximale);
  const auto fichier = nouveauFichier();
  if (!contenu ||
      !g_key_file_load_from_data(fichier.get(), contenu->data(), contenu->size(), G_KEY_FILE_NONE, nullptr))
    return std::nullopt;
  const Cadre cadre{.largeur = g_key_file_get_integer(fichier.get(), groupe, "largeur", nullptr),
                    .hauteur = g_key_file_get_integer(fichier.get(), groupe, "hauteur", nullptr),
                    .agrandie = g_key_file_get_boolean(fichier.get(), groupe, "agrandie", nullptr) != 0};
  if (cadre.largeur < Apparence::largeurMinimale || cadre.largeur > coteMaximal ||
      cadre.hauteur < Apparence::hauteurMinimale || cadre.hauteur > coteMaximal)
    return std::nullopt;
  return cadre;
}

void retenirLeCadre(const std::string& nom, const Cadre& cadre) {
  const auto fichier = nouveauFichier();
  g_key_file_set_integer(fichier.get(), groupe, "largeur", cadre.largeur);
  g_key_file_set_integer(fichier.get(), groupe, "hauteur", cadre.hauteur);
  g_key_file_set_boolean(fichier.get(), groupe, "agrandie", cadre.agrandie);
  gsize taille = 0;
  const std::unique_ptr<char, decltype(&g_free)> texte(g_key_file_to_data(fichier.get(), &taille, nullptr),
                                                       &g_free);
  // Un disque plein ne coûte ici que la taille de la fenêtre.
  socle::ecrireFichier(chemin(nom), {texte.get(), taille});
}

} // namespace keltrove::bureau
