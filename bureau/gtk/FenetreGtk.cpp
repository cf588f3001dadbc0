#include "bureau/gtk/FenetreGtk.hpp"

#include "bureau/gtk/Retenu.hpp"
#include "bureau/gtk/Style.hpp"
#include "bureau/gtk/TextesDeGtk.hpp"
#include "bureau/gtk/X11.hpp"
#include "fenetre/Apparence.hpp"

#include <algorithm>

#include <dlfcn.h>
#include <glibmm/main.h>
#include <gtkmm/cssprovider.h>
#include <gtkmm/settings.h>
#include <gtkmm/stylecontext.h>
#include <malloc.h>

namespace keltrove::bureau {

namespace Apparence = fenetre::Apparence;

FenetreGtk::FenetreGtk(fenetre::ObservateurDeLaVue& observateur, std::function<void()> fermer)
    : observateur_(observateur), fermer_(std::move(fermer)), lecteur_([this](bool tourne) {
        // GTK sait montrer l’arbre d’un autre processus, comme celui de la page, depuis sa version 4.14.
        observateur_.quandLeLecteurDEcranChange(
            {.tourne = tourne, .voitLaPage = gtk_check_version(4, 14, 0) == nullptr});
      }),
      actions_(*this, menus_, vueWeb_,
               {.recharger = [this] { observateur_.quandOnRecharge(); },
                .quitter = fermer_,
                .boiteOuverte = [this](Gtk::Window& boite) { suivreLeRegard(boite); }}) {
  const auto style = Gtk::CssProvider::create();
  style->load_from_data(feuilleDeStyle());
  Gtk::StyleContext::add_provider_for_display(get_display(), style, GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
  add_css_class("keltrove");
  set_title(Apparence::titreDeLaFenetre);
  set_icon_name(KELTROVE_IDENTIFIANT);
  set_size_request(Apparence::largeurMinimale, Apparence::hauteurMinimale);
  reprendreLaTaille();

  construireLeBandeau();
  contenu_.set_child(vueWeb_.widget());
  contenu_.add_overlay(ecran_);
  contenu_.add_overlay(bandeau_);
  contenu_.set_vexpand(true);
  taire(contenu_);
  nommer(vueWeb_.widget(), Apparence::Noms::page);
  pile_.append(menus_.barre());
  pile_.append(contenu_);
  set_child(pile_);
  suivreLeRegard(*this);

  const auto reglages = Gtk::Settings::get_default();
  reglages->property_gtk_theme_name().signal_changed().connect([this] { suivreLeTheme(); });
  reglages->property_gtk_application_prefer_dark_theme().signal_changed().connect(
      [this] { suivreLeTheme(); });
  suivreLeTheme();
}

void FenetreGtk::construireLeBandeau() {
  namespace Bandeau = Apparence::Bandeau;
  bandeau_.add_css_class("bandeau");
  bandeau_.set_halign(Gtk::Align::CENTER);
  bandeau_.set_valign(Gtk::Align::END);
  bandeau_.set_margin_bottom(Bandeau::margeDuBas);
  bandeau_.set_size_request(-1, Bandeau::hauteur);
  bandeau_.set_ellipsize(Pango::EllipsizeMode::END);
  bandeau_.set_single_line_mode(true);
  bandeau_.set_can_target(false);
  bandeau_.set_visible(false);
}

void FenetreGtk::suivreLeRegard(Gtk::Window& fenetre) {
  fenetre.property_is_active().signal_changed().connect(temoin_.garder([this] { direLeRegard(); }));
}

// Un menu ou une boîte prend le clavier à la page sans que l’utilisateur regarde ailleurs.
void FenetreGtk::direLeRegard() {
  const auto fenetres = Gtk::Window::list_toplevels();
  // Une boîte refermée peut se croire encore active.
  observateur_.quandLeRegardChange(std::ranges::any_of(
      fenetres, [](auto* fenetre) { return fenetre->get_visible() && fenetre->is_active(); }));
}

void FenetreGtk::reprendreLaTaille() {
  const auto cadre = fenetre::ouverture(lireLeCadre(Apparence::nomDuCadre)).cadre;
  set_default_size(cadre.largeur, cadre.hauteur);
  if (cadre.agrandie) maximize();
}

void FenetreGtk::retenirLaTaille() const {
  if (!get_mapped()) return;
  fenetre::Cadre cadre{.agrandie = is_maximized()};
  get_default_size(cadre.largeur, cadre.hauteur);
  retenirLeCadre(Apparence::nomDuCadre, cadre);
}

void FenetreGtk::suivreLeTheme() {
  const bool sombre = themeSombre(*this);
  remove_css_class(sombre ? "clair" : "sombre");
  add_css_class(sombre ? "sombre" : "clair");
  vueWeb_.peindreLeFond(sombre ? Apparence::fondSombre : Apparence::fondClair);
}

bool FenetreGtk::on_close_request() {
  fermer_();
  return true;
}

void FenetreGtk::dessiner(const fenetre::EtatEcran& etat) {
  // Sous l’écran, la page ne doit recevoir ni touche ni focus.
  vueWeb_.widget().set_can_focus(!etat.visible);
  depot_.couvrir(etat.visible);
  ecran_.dessiner(etat);
  if (etat.visible) return;
  vueWeb_.widget().grab_focus();
  // Le démarrage laisse plusieurs mégaoctets libres que l’allocateur garderait pour lui.
  Glib::signal_timeout().connect_once([] { ::malloc_trim(0); }, 1000, Glib::PRIORITY_LOW);
}

void FenetreGtk::dessiner(const fenetre::EtatBandeau& etat) {
  bandeau_.set_text(etat.texte);
  bandeau_.set_visible(etat.visible);
}

void FenetreGtk::poserLesMenus(const std::vector<fenetre::Menus::Menu>& menus) {
  menus_.poser(menus, *get_application());
}

void FenetreGtk::recevoirLeJeton(const std::string& jeton) {
  gtk_window_set_startup_id(GTK_WINDOW(gobj()), jeton.c_str());
}

void FenetreGtk::mettreDevant() {
  present();
}

std::int64_t FenetreGtk::mettreDerriere() {
  gtk_widget_realize(GTK_WIDGET(gobj()));
  auto* surface = gtk_native_get_surface(GTK_NATIVE(gobj()));
  const auto numero = effacerLaFenetre(surface);
  set_visible(true);
  gdk_toplevel_lower(GDK_TOPLEVEL(surface));
  return numero;
}

// Cherchée quand on s’en sert : une application construite avec un GTK d’avant la 4.14 peut en trouver un
// plus récent.
void FenetreGtk::annoncer(const std::string& texte) {
  using Annonce = void (*)(GtkAccessible*, const char*, int priorite);
  static const auto annonce = reinterpret_cast<Annonce>(::dlsym(RTLD_DEFAULT, "gtk_accessible_announce"));
  constexpr int moyenne = 1;
  if (annonce != nullptr) annonce(GTK_ACCESSIBLE(gobj()), texte.c_str(), moyenne);
}

void FenetreGtk::charger(const std::string& adresse) {
  vueWeb_.charger(adresse);
}

void FenetreGtk::arreterLeChargement() {
  vueWeb_.arreterLeChargement();
}

void FenetreGtk::evaluer(const std::string& expression,
                         std::function<void(std::optional<std::string>)> fini) {
  vueWeb_.evaluer(expression, std::move(fini));
}

} // namespace keltrove::bureau
