#include "bureau/gtk/Style.hpp"

#include "fenetre/Apparence.hpp"

#include <string>

#include <fmt/format.h>
#include <gdkmm/display.h>
#include <gtk/gtk.h>

namespace keltrove::bureau {

namespace Apparence = fenetre::Apparence;
namespace Ecran = fenetre::Apparence::Ecran;
namespace Bandeau = fenetre::Apparence::Bandeau;

namespace {

std::string enCSS(const Apparence::Couleur& c) {
  return fmt::format("rgba({:.0f},{:.0f},{:.0f},{})", c.rouge * 255, c.vert * 255, c.bleu * 255, c.opacite);
}

// En points plutôt qu’en pixels : l’agrandissement du texte choisi par l’utilisateur s’applique alors.
std::string police(int taille) {
  return fmt::format("font-size: {}pt;", taille * 0.75);
}

std::string graisse(int valeur) {
  return fmt::format("font-weight: {};", valeur);
}
std::string couleur(const Apparence::Couleur& c) {
  return "color: " + enCSS(c) + ";";
}
std::string fond(const Apparence::Couleur& c) {
  return "background-color: " + enCSS(c) + ";";
}

std::string regle(const std::string& selecteur, const std::string& corps) {
  return fmt::format("{} {{ {}{} }}\n", selecteur, corps, corps.ends_with(';') ? "" : ";");
}

std::string reglesDuBouton(const std::string& classe, const Ecran::FondDeBouton& fonds,
                           const std::string& corps) {
  const auto selecteur = ".ecran-attente button." + classe;
  return regle(selecteur, corps + fond(fonds.repos)) + regle(selecteur + ":hover", fond(fonds.survol)) +
         regle(selecteur + ":active", fond(fonds.presse));
}

// L’écran d’attente est sombre sous tous les thèmes : rien de ce qu’il contient ne suit celui du système.
std::string reglesDesBoutons() {
  return regle(".ecran-attente button", "background: none; border: none; box-shadow: none; outline: none; "
                                        "text-shadow: none; min-height: 0;") +
         reglesDuBouton("reessayer", Ecran::reessayer,
                        police(Ecran::tailleDuTexte) + graisse(Ecran::graisseDeReessayer) +
                            couleur(Ecran::texteDeReessayer) + "border-radius: 7px; padding: 6px 18px;") +
         reglesDuBouton("detail", Ecran::boutonDetail,
                        police(Ecran::tailleDuBoutonDetail) + couleur(Ecran::texteDuBoutonDetail) +
                            "border-radius: 999px; padding: 4px 13px;") +
         regle(".ecran-attente button:focus-visible",
               "outline: 2px solid " + enCSS(Ecran::contourDuClavier) + "; outline-offset: 2px;");
}

std::string reglesDesTextes() {
  return regle(".ecran-attente .titre",
               police(Ecran::tailleDuTitre) + graisse(Ecran::graisseDuTitre) + couleur(Ecran::titre)) +
         regle(".ecran-attente .phrase", police(Ecran::tailleDuTexte) + couleur(Ecran::phrase)) +
         regle(".ecran-attente .conseil",
               police(Ecran::tailleDuTexte) + graisse(Ecran::graisseDuConseil) + couleur(Ecran::conseil));
}

std::string reglesDuDetail() {
  return regle(".ecran-attente .cadre-detail", "border-radius: 8px;" + fond(Ecran::fondDuDetail)) +
         regle(".ecran-attente textview, .ecran-attente textview text",
               police(Ecran::tailleDuDetail) +
                   "font-family: monospace; background-color: transparent; caret-color: " +
                   enCSS(Ecran::detail) + ";" + couleur(Ecran::detail)) +
         regle(".ecran-attente textview text selection", fond(Ecran::selection) + couleur(Ecran::titre)) +
         regle(".ecran-attente scrollbar", "background: none; border: none;") +
         regle(".ecran-attente scrollbar slider",
               fond(Ecran::ascenseur) + "border: none; min-width: 6px; border-radius: 6px;");
}

// GTK estompe trop, pour être lus, le titre du menu ouvert, les touches d’un article et ceux
// qui sont sans effet.
std::string reglesDesArticles() {
  return regle("window.keltrove menubar > item:selected", "color: inherit") +
         regle("popover.menu modelbutton accelerator", "color: alpha(currentColor, 0.8)") +
         regle("popover.menu modelbutton:disabled", "color: alpha(currentColor, 0.6)") +
         regle("popover.menu modelbutton:disabled accelerator", "color: inherit");
}

// Sans compositeur, la transparence autour d’un menu ouvert est un cadre noir : l’ombre n’y a pas sa place.
std::string reglesDesMenus() {
  if (Gdk::Display::get_default()->is_composited()) return {};
  return regle("popover.menu > contents", "box-shadow: none; margin: 0; border-radius: 0;") +
         regle("popover.menu", "padding: 0;");
}

} // namespace

Glib::ustring feuilleDeStyle() {
  return regle("window.keltrove.sombre", fond(Apparence::fondSombre)) +
         regle("window.keltrove.clair", fond(Apparence::fondClair)) +
         regle(".ecran-attente", fond(Apparence::fondSombre)) + reglesDesTextes() + reglesDesBoutons() +
         reglesDuDetail() + reglesDesArticles() + reglesDesMenus() +
         regle(".bandeau", police(Bandeau::tailleDuTexte) + couleur(Bandeau::texte) + fond(Bandeau::fond) +
                               fmt::format("border-radius: {}px; padding: 0 4px;", Bandeau::arrondi));
}

// Ni le nom du thème ni une préférence n’y suffiraient : l’environnement peut imposer une variante.
bool themeSombre(Gtk::Widget& fenetre) {
  GdkRGBA texte;
#if GTK_CHECK_VERSION(4, 10, 0)
  gtk_widget_get_color(fenetre.gobj(), &texte);
#else
  gtk_style_context_get_color(gtk_widget_get_style_context(fenetre.gobj()), &texte);
#endif
  return 0.2126F * texte.red + 0.7152F * texte.green + 0.0722F * texte.blue > 0.5F;
}

} // namespace keltrove::bureau
