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

std::string regle(const char* selecteur, const std::string& corps) {
  return fmt::format("{} {{ {}{} }}\n", selecteur, corps, corps.ends_with(';') ? "" : ";");
}

// L’écran d’attente est sombre sous tous les thèmes : rien de ce qu’il contient ne suit celui du système.
std::string regleDesBoutons() {
  return regle(".ecran-attente button", "background: none; border: none; box-shadow: none; outline: none; "
                                        "text-shadow: none; min-height: 0;") +
         regle(".ecran-attente button.reessayer",
               police(Ecran::tailleDuTexte) + "background-color: #2f6fde; color: white; font-weight: 500; "
                                              "border-radius: 7px; padding: 6px 18px;") +
         regle(".ecran-attente button.reessayer:hover", "background-color: #3d7cea;") +
         regle(".ecran-attente button.reessayer:active", "background-color: #255cbd;") +
         regle(".ecran-attente button.detail",
               police(12) + "background-color: rgba(255,255,255,0.10); color: rgba(255,255,255,0.82);"
                            "border-radius: 999px; padding: 4px 13px;") +
         regle(".ecran-attente button.detail:hover", "background-color: rgba(255,255,255,0.16);") +
         regle(".ecran-attente button.detail:active", "background-color: rgba(255,255,255,0.07);") +
         regle(".ecran-attente button:focus-visible",
               "outline: 2px solid rgba(148,187,255,0.9); outline-offset: 2px;");
}

std::string regleDesTextes() {
  return regle(".ecran-attente .titre",
               police(Ecran::tailleDuTitre) + "font-weight: 600; color: " + enCSS(Ecran::titre)) +
         regle(".ecran-attente .phrase", police(Ecran::tailleDuTexte) + "color: " + enCSS(Ecran::phrase)) +
         regle(".ecran-attente .conseil",
               police(Ecran::tailleDuTexte) + "font-weight: 500; color: " + enCSS(Ecran::conseil));
}

std::string regleDuDetail() {
  return regle(".ecran-attente .cadre-detail",
               "border-radius: 8px; background-color: " + enCSS(Ecran::fondDuDetail)) +
         regle(".ecran-attente textview, .ecran-attente textview text",
               police(Ecran::tailleDuDetail) +
                   "font-family: monospace; background-color: transparent; caret-color: " +
                   enCSS(Ecran::detail) + "; color: " + enCSS(Ecran::detail)) +
         regle(".ecran-attente textview text selection", "background-color: #2f6fde; color: white;") +
         regle(".ecran-attente scrollbar", "background: none; border: none;") +
         regle(".ecran-attente scrollbar slider",
               "background-color: rgba(255,255,255,0.28); border: none; min-width: 6px; border-radius: 6px;");
}

// GTK estompe trop, pour être lus, le titre du menu ouvert, les touches d’un article et ceux qui sont sans
// effet.
std::string regleDesArticles() {
  return regle("window.keltrove menubar > item:selected", "color: inherit") +
         regle("popover.menu modelbutton accelerator", "color: alpha(currentColor, 0.8)") +
         regle("popover.menu modelbutton:disabled", "color: alpha(currentColor, 0.6)") +
         regle("popover.menu modelbutton:disabled accelerator", "color: inherit");
}

// Sans compositeur, la transparence autour d’un menu ouvert est un cadre noir : l’ombre n’y a pas sa place.
std::string regleDesMenus() {
  if (Gdk::Display::get_default()->is_composited()) return {};
  return regle("popover.menu > contents", "box-shadow: none; margin: 0; border-radius: 0;") +
         regle("popover.menu", "padding: 0;");
}

} // namespace

Glib::ustring feuilleDeStyle() {
  return regle("window.keltrove.sombre", "background-color: " + enCSS(Apparence::fondSombre)) +
         regle("window.keltrove.clair", "background-color: " + enCSS(Apparence::fondClair)) +
         regle(".ecran-attente", "background-color: " + enCSS(Apparence::fondSombre)) + regleDesTextes() +
         regleDesBoutons() + regleDuDetail() + regleDesArticles() + regleDesMenus() +
         regle(".bandeau", police(Bandeau::tailleDuTexte) + "color: " + enCSS(Bandeau::texte) +
                               "; background-color: " + enCSS(Bandeau::fond) +
                               fmt::format("; border-radius: {}px; padding: 0 4px;", Bandeau::arrondi));
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
