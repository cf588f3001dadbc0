#include "bureau/gtk/CurseurDeTexte.hpp"

#include <algorithm>
#include <array>

namespace keltrove::bureau {
namespace {

constexpr std::array<guint, 3> touches{GDK_KEY_F7, GDK_KEY_Menu, GDK_KEY_F10};

bool estANous(GtkShortcut* raccourci) {
  auto* declencheur = gtk_shortcut_get_trigger(raccourci);
  return GTK_IS_KEYVAL_TRIGGER(declencheur) &&
         std::ranges::find(touches, gtk_keyval_trigger_get_keyval(GTK_KEYVAL_TRIGGER(declencheur))) !=
             touches.end();
}

void retirer(GListModel* raccourcis) {
  for (guint i = 0; i < g_list_model_get_n_items(raccourcis); ++i) {
    auto* raccourci = GTK_SHORTCUT(g_list_model_get_item(raccourcis, i));
    if (estANous(raccourci)) gtk_shortcut_set_action(raccourci, g_object_ref(gtk_nothing_action_get()));
    g_object_unref(raccourci);
  }
}

void figer(GtkWidget* texte) {
  gtk_text_view_set_editable(GTK_TEXT_VIEW(texte), FALSE);
  gtk_widget_action_set_enabled(texte, "menu.popup", FALSE);
  g_signal_connect(texte, "move-focus", G_CALLBACK(+[](GtkWidget* moi, GtkDirectionType) {
                     g_signal_stop_emission_by_name(moi, "move-focus");
                   }),
                   nullptr);
  g_signal_connect(texte, "insert-emoji",
                   G_CALLBACK(+[](GtkWidget* moi) { g_signal_stop_emission_by_name(moi, "insert-emoji"); }),
                   nullptr);
}

} // namespace

void retirerDesTouchesAuxTextes() {
  // Les raccourcis d’une classe sont partagés par tous ses éléments : un seul suffit à les atteindre.
  auto* texte = GTK_WIDGET(g_object_ref_sink(gtk_text_view_new()));
  auto* controleurs = gtk_widget_observe_controllers(texte);
  for (guint i = 0; i < g_list_model_get_n_items(controleurs); ++i) {
    auto* controleur = g_list_model_get_item(controleurs, i);
    if (GTK_IS_SHORTCUT_CONTROLLER(controleur)) retirer(G_LIST_MODEL(controleur));
    g_object_unref(controleur);
  }
  g_object_unref(controleurs);
  g_object_unref(texte);
}

void figerLeTexteCacheDe(GtkWidget* vue) {
  for (auto* enfant = gtk_widget_get_first_child(vue); enfant; enfant = gtk_widget_get_next_sibling(enfant))
    if (GTK_IS_TEXT_VIEW(enfant)) figer(enfant);
}

} // namespace keltrove::bureau
