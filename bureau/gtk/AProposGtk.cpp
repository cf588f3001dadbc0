#include "bureau/gtk/AProposGtk.hpp"

#include "bureau/gtk/DeGLib.hpp"
#include "bureau/gtk/TextesDeGtk.hpp"
#include "fenetre/APropos.hpp"
#include "fenetre/Apparence.hpp"

#include <fmt/format.h>
#include <gdk/gdkkeysyms.h>
#include <gdkmm/clipboard.h>
#include <gtkmm/eventcontrollerkey.h>
#include <gtkmm/icontheme.h>
#include <webkit/webkit.h>

namespace keltrove::bureau {

namespace APropos = fenetre::APropos;

namespace {

constexpr int marge = 28;
constexpr int espacement = 10;
constexpr int tailleDeLIcone = 72;
constexpr int largeurDuTexte = 42; // en caractères
constexpr int hauteurDuJournal = 180;
constexpr int margeDuJournal = 8;

// Ce qu’il faut savoir d’une machine pour comprendre un journal.
std::string systeme() {
  const TexteDeGLib nom(g_get_os_info(G_OS_INFO_KEY_PRETTY_NAME));
  return fmt::format("{}, GTK {}.{}.{}, WebKitGTK {}.{}.{}", nom ? nom.get() : "Système inconnu",
                     gtk_get_major_version(), gtk_get_minor_version(), gtk_get_micro_version(),
                     webkit_get_major_version(), webkit_get_minor_version(), webkit_get_micro_version());
}

} // namespace

AProposGtk::AProposGtk(Gtk::Window& parente)
    : pile_(Gtk::Orientation::VERTICAL, espacement), nom_(APropos::nom), version_(APropos::version),
      objet_(APropos::objet), licence_(APropos::licence), boutons_(Gtk::Orientation::HORIZONTAL, espacement),
      voir_(APropos::titreDuBoutonDuJournal(false)), copier_(APropos::copierLeJournal),
      fermer_(APropos::fermer) {
  set_title(APropos::titre);
  set_transient_for(parente);
  set_modal(true);
  set_resizable(false);
  set_hide_on_close(true);
  g_object_set(gobj(), "accessible-role", GTK_ACCESSIBLE_ROLE_DIALOG, nullptr);
  construireLesTextes();
  construireLeJournal();
  construireLesBoutons();
  for (auto* element : std::initializer_list<Gtk::Widget*>{&icone_, &nom_, &version_, &objet_, &licence_,
                                                           &cadreDuJournal_, &boutons_})
    pile_.append(*element);
  pile_.set_margin(marge);
  set_child(pile_);
  nommerLesAscenseurs(*this);
  set_default_widget(fermer_);
  fermerSurEchap();
}

void AProposGtk::construireLesTextes() {
  icone_.set_from_icon_name(KELTROVE_IDENTIFIANT);
  icone_.set_visible(Gtk::IconTheme::get_for_display(get_display())->has_icon(KELTROVE_IDENTIFIANT));
  icone_.set_pixel_size(tailleDeLIcone);
  nom_.add_css_class("title-1");
  version_.add_css_class("dim-label");
  for (auto* texte : {&objet_, &licence_}) {
    texte->set_wrap(true);
    texte->set_max_width_chars(largeurDuTexte);
    texte->set_justify(Gtk::Justification::CENTER);
  }
  licence_.add_css_class("caption");
}

void AProposGtk::construireLeJournal() {
  nommer(texteDuJournal_, fenetre::Apparence::Noms::journal);
  texteDuJournal_.set_editable(false);
  texteDuJournal_.set_cursor_visible(false);
  texteDuJournal_.set_monospace(true);
  texteDuJournal_.set_wrap_mode(Gtk::WrapMode::WORD_CHAR);
  texteDuJournal_.set_top_margin(margeDuJournal);
  texteDuJournal_.set_left_margin(margeDuJournal);
  texteDuJournal_.set_right_margin(margeDuJournal);
  cadreDuJournal_.set_child(texteDuJournal_);
  cadreDuJournal_.set_policy(Gtk::PolicyType::NEVER, Gtk::PolicyType::AUTOMATIC);
  cadreDuJournal_.set_min_content_height(hauteurDuJournal);
  cadreDuJournal_.set_has_frame(true);
  cadreDuJournal_.set_visible(false);
}

void AProposGtk::construireLesBoutons() {
  voir_.signal_toggled().connect([this] {
    cadreDuJournal_.set_visible(voir_.get_active());
    voir_.set_label(APropos::titreDuBoutonDuJournal(voir_.get_active()));
  });
  copier_.signal_clicked().connect([this] {
    get_clipboard()->set_text(texteDuJournal_.get_buffer()->get_text());
    copier_.set_label(APropos::journalCopie);
  });
  fermer_.signal_clicked().connect([this] { close(); });
  boutons_.set_halign(Gtk::Align::CENTER);
  boutons_.set_margin_top(espacement);
  boutons_.append(voir_);
  boutons_.append(copier_);
  boutons_.append(fermer_);
}

void AProposGtk::fermerSurEchap() {
  const auto touches = Gtk::EventControllerKey::create();
  touches->signal_key_pressed().connect(
      [this](guint touche, guint, Gdk::ModifierType) {
        if (touche != GDK_KEY_Escape) return false;
        close();
        return true;
      },
      false);
  add_controller(touches);
}

// Le journal grandit tant que l’application vit.
void AProposGtk::on_show() {
  texteDuJournal_.get_buffer()->set_text(APropos::journal(systeme()));
  copier_.set_label(APropos::copierLeJournal);
  fermer_.grab_focus();
  Gtk::Window::on_show();
}

} // namespace keltrove::bureau
