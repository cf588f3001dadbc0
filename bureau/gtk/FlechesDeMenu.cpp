#include "bureau/gtk/FlechesDeMenu.hpp"

#include <string_view>

#include <gtk/gtk.h>

namespace keltrove::bureau {
namespace {

bool seChoisit(GtkWidget* element) {
  return std::string_view(G_OBJECT_TYPE_NAME(element)) == "GtkModelButton" &&
         gtk_widget_get_mapped(element) != FALSE && gtk_widget_is_sensitive(element) != FALSE;
}

bool contientUnAutreArticle(GtkWidget* volet, GtkWidget* focus) {
  if (volet != focus && seChoisit(volet)) return true;
  for (auto* enfant = gtk_widget_get_first_child(volet); enfant != nullptr;
       enfant = gtk_widget_get_next_sibling(enfant))
    if (contientUnAutreArticle(enfant, focus)) return true;
  return false;
}

void quandLeFocusVaBouger(GtkWidget* volet, GtkDirectionType sens, gpointer) {
  if (sens == GTK_DIR_LEFT || sens == GTK_DIR_RIGHT) return;
  if (!contientUnAutreArticle(volet, gtk_root_get_focus(gtk_widget_get_root(volet))))
    g_signal_stop_emission_by_name(volet, "move-focus");
}

} // namespace

void retenirLesFleches(Gtk::Popover& volet) {
  g_signal_connect(volet.gobj(), "move-focus", G_CALLBACK(quandLeFocusVaBouger), nullptr);
}

} // namespace keltrove::bureau
