#include "bureau/gtk/EcranGtk.hpp"

#include "bureau/gtk/DeGLib.hpp"
#include "bureau/gtk/TextesDeGtk.hpp"
#include "fenetre/Apparence.hpp"

#include <string>

#include <gdk/gdkkeysyms.h>
#include <gtkmm/eventcontrollerkey.h>

namespace keltrove::bureau {

namespace Ecran = fenetre::Apparence::Ecran;

namespace {

// Ce que le serveur écrit et ce que le système répond peuvent contenir n’importe quels octets.
Glib::ustring affichable(const std::string& texte) {
  const TexteDeGLib valide(g_utf8_make_valid(texte.data(), static_cast<gssize>(texte.size())));
  return valide.get();
}

} // namespace

EcranGtk::EcranGtk(fenetre::ObservateurDeLaVue& observateur)
    : observateur_(observateur), phrase_(Ecran::largeurDuTexte, "phrase"),
      conseil_(Ecran::largeurDuTexte, "conseil"),
      boutons_(Gtk::Orientation::HORIZONTAL, Ecran::entreLesBoutons),
      pile_(Gtk::Orientation::VERTICAL, Ecran::espacement) {
  add_css_class("ecran-attente");
  set_policy(Gtk::PolicyType::NEVER, Gtk::PolicyType::AUTOMATIC);
  set_focusable(true);
  construireLeTitre();
  construireLesBoutons();
  construireLeDetail();
  pile_.set_valign(Gtk::Align::CENTER);
  pile_.set_margin_start(Ecran::margesLaterales / 2);
  pile_.set_margin_end(Ecran::margesLaterales / 2);
  pile_.set_margin_top(Ecran::espacement);
  pile_.set_margin_bottom(Ecran::espacement);
  for (auto* element :
       std::initializer_list<Gtk::Widget*>{&roue_, &titre_, &phrase_, &conseil_, &boutons_, &cadreDetail_}) {
    element->set_halign(Gtk::Align::CENTER);
    pile_.append(*element);
  }
  set_child(pile_);
  nommerLesAscenseurs(*this);
  lierEntree();
}

void EcranGtk::construireLeTitre() {
  titre_.add_css_class("titre");
  titre_.set_ellipsize(Pango::EllipsizeMode::END);
}

void EcranGtk::construireLesBoutons() {
  boutonReessayer_.add_css_class("reessayer");
  boutonReessayer_.signal_clicked().connect([this] { observateur_.quandOnReessaie(); });
  boutonDetail_.add_css_class("detail");
  boutonDetail_.set_valign(Gtk::Align::CENTER);
  boutonDetail_.signal_clicked().connect([this] { observateur_.quandOnBasculeLeDetail(); });
  boutons_.append(boutonReessayer_);
  boutons_.append(boutonDetail_);
}

void EcranGtk::construireLeDetail() {
  nommer(detail_, fenetre::Apparence::Noms::detail);
  detail_.set_editable(false);
  detail_.set_cursor_visible(false);
  detail_.set_monospace(true);
  detail_.set_wrap_mode(Gtk::WrapMode::WORD_CHAR);
  detail_.set_left_margin(Ecran::margeDuDetail);
  detail_.set_right_margin(Ecran::margeDuDetail);
  detail_.set_top_margin(Ecran::margeDuDetail);
  detail_.set_bottom_margin(Ecran::margeDuDetail);
  cadreDetail_.add_css_class("cadre-detail");
  cadreDetail_.set_child(detail_);
  cadreDetail_.set_policy(Gtk::PolicyType::NEVER, Gtk::PolicyType::AUTOMATIC);
  cadreDetail_.set_size_request(Ecran::largeurDuDetail, Ecran::hauteurDuDetail);
  cadreDetail_.set_overflow(Gtk::Overflow::HIDDEN);
}

// Entrée presse « Réessayer » où que soit le clavier sur cet écran ; la barre d’espace
// presse le bouton choisi.
void EcranGtk::lierEntree() {
  const auto touches = Gtk::EventControllerKey::create();
  touches->set_propagation_phase(Gtk::PropagationPhase::CAPTURE);
  touches->signal_key_pressed().connect(
      [this](guint touche, guint, Gdk::ModifierType) {
        const bool entree =
            touche == GDK_KEY_Return || touche == GDK_KEY_KP_Enter || touche == GDK_KEY_ISO_Enter;
        if (!entree || !boutonReessayer_.get_visible()) return false;
        observateur_.quandOnReessaie();
        return true;
      },
      false);
  add_controller(touches);
}

void EcranGtk::dessiner(const fenetre::EtatEcran& etat) {
  titre_.set_text(affichable(etat.titre));
  phrase_.ecrire(affichable(etat.phrase));
  conseil_.ecrire(affichable(etat.conseil));
  roue_.set_visible(etat.roue);
  roue_.tourner(etat.roue);
  boutonReessayer_.set_visible(etat.boutonReessayer);
  boutonReessayer_.set_label(etat.titreDuBoutonReessayer);
  boutonDetail_.set_visible(etat.boutonDetail);
  boutonDetail_.set_label(etat.titreDuBoutonDetail);
  boutons_.set_visible(etat.boutonReessayer || etat.boutonDetail);
  // Jusqu’à quelques mégaoctets : la vue ne les met en page que si on les déplie.
  if (etat.cadreDetail) detail_.get_buffer()->set_text(affichable(etat.detail));
  cadreDetail_.set_visible(etat.cadreDetail);
  set_visible(etat.visible);
  donnerLeClavier(etat.clavier());
}

void EcranGtk::donnerLeClavier(fenetre::EtatEcran::Clavier clavier) {
  using enum fenetre::EtatEcran::Clavier;
  if (clavier == page || boutonDetail_.has_focus() || detail_.has_focus()) return;
  if (clavier == reessayer)
    boutonReessayer_.grab_focus();
  else
    grab_focus();
}

} // namespace keltrove::bureau
