// Apparence : les mesures et les couleurs que tous les bureaux partagent. Rien d’autre qu’elles : un bureau
// qui a besoin d’une couleur de plus l’ajoute ici, s’il n’est pas seul à s’en servir.
//
// Longueurs et tailles de texte en points ; composantes d’une couleur de 0 à 1, en sRGB.
#pragma once

namespace keltrove::fenetre::Apparence {

struct Couleur {
  double rouge, vert, bleu;
  double opacite = 1.0;
};
constexpr Couleur gris(double blanc, double opacite = 1.0) {
  return {blanc, blanc, blanc, opacite};
}

// Le fond de la fenêtre suit le thème du système ; celui de l’écran d’attente est toujours sombre.
inline constexpr Couleur fondSombre{0.055, 0.067, 0.086};
inline constexpr Couleur fondClair{236.0 / 255, 236.0 / 255, 239.0 / 255};

inline constexpr const char* nomDeLApplication = "Keltrove";
inline constexpr const char* titreDeLaFenetre = nomDeLApplication;
inline constexpr const char* nomDuCadre = "fenetre-keltrove"; // la taille est retenue sous ce nom
inline constexpr int largeur = 1280;
inline constexpr int hauteur = 820;
inline constexpr int largeurMinimale = 720;
inline constexpr int hauteurMinimale = 480;

// Ce que dit un lecteur d’écran de ce qui ne porte aucun texte.
namespace Noms {
inline constexpr const char* page = "Page";
inline constexpr const char* menus = "Menus";
inline constexpr const char* detail = "Détail";
inline constexpr const char* journal = "Journal";
inline constexpr const char* menuDUnTexte = "Menu du texte";
inline constexpr const char* defilement = "Défilement";
} // namespace Noms

// Les graisses, sur l’échelle de CSS et d’OpenType.
namespace Graisse {
inline constexpr int moyenne = 500;
inline constexpr int demiGrasse = 600;
} // namespace Graisse

namespace Ecran {
inline constexpr int tailleDuTitre = 22;
inline constexpr int graisseDuTitre = Graisse::demiGrasse;
inline constexpr int tailleDuTexte = 13;
inline constexpr int graisseDuConseil = Graisse::moyenne;
inline constexpr int tailleDuDetail = 11;
inline constexpr int largeurDuTexte = 520;
inline constexpr int espacement = 14;
inline constexpr int entreLesBoutons = 12;
inline constexpr int margesLaterales = 60; // les deux ensemble
inline constexpr int largeurDuDetail = 560;
inline constexpr int hauteurDuDetail = 180;
inline constexpr int margeDuDetail = 8;
inline constexpr Couleur titre = gris(1);
inline constexpr Couleur phrase = gris(0.78);
inline constexpr Couleur conseil{0.37, 0.62, 1.0};
inline constexpr Couleur detail = gris(0.8);
inline constexpr Couleur fondDuDetail = gris(0.1);
inline constexpr Couleur ascenseur = gris(1, 0.28);

// Là où le système ne dessine pas lui-même ses boutons sur un fond sombre : au repos, survolé, pressé.
struct FondDeBouton {
  Couleur repos, survol, presse;
};
inline constexpr int tailleDuBoutonDetail = 12;
inline constexpr int graisseDeReessayer = Graisse::moyenne;
inline constexpr Couleur texteDeReessayer = gris(1);
inline constexpr FondDeBouton reessayer{
    .repos = {0.184, 0.435, 0.871}, .survol = {0.239, 0.486, 0.918}, .presse = {0.145, 0.361, 0.741}};
inline constexpr Couleur texteDuBoutonDetail = gris(1, 0.82);
inline constexpr FondDeBouton boutonDetail{
    .repos = gris(1, 0.10), .survol = gris(1, 0.16), .presse = gris(1, 0.07)};
inline constexpr Couleur contourDuClavier{0.580, 0.733, 1.0, 0.9};
inline constexpr Couleur selection = reessayer.repos;
} // namespace Ecran

namespace Bandeau {
inline constexpr int tailleDuTexte = 12;
inline constexpr int hauteur = 30;
inline constexpr int margeDuBas = 20;
inline constexpr int arrondi = 8;
inline constexpr Couleur texte = gris(0.88);
inline constexpr Couleur fond = gris(0.16, 0.95);
} // namespace Bandeau

} // namespace keltrove::fenetre::Apparence
