#include "bureau/gtk/TextesDeGtk.hpp"

#include "bureau/gtk/DeGLib.hpp"
#include "fenetre/Apparence.hpp"

#include <array>
#include <memory>
#include <string_view>

#include <gtk/gtk.h>

namespace keltrove::bureau {
namespace {

constexpr std::array ascenseurs{"GtkScrollbar", "GtkRange"};
constexpr std::array enveloppesDeMenu{"GtkPopoverMenu", "GtkPopoverContent"};
constexpr std::array articlesDeMenu{"GtkModelButton"};

template <typename Faire>
void parcourir(GtkWidget* element, const Faire& faire) {
  faire(element);
  for (auto* enfant = gtk_widget_get_first_child(element); enfant != nullptr;
       enfant = gtk_widget_get_next_sibling(enfant))
    parcourir(enfant, faire);
}

bool estUn(GtkWidget* element, const auto& classes) {
  for (const std::string_view classe : classes)
    if (classe == G_OBJECT_TYPE_NAME(element)) return true;
  return false;
}

void nommer(GtkAccessible* element, const char* nom) {
  gtk_accessible_update_property(element, GTK_ACCESSIBLE_PROPERTY_LABEL, nom, -1);
}

void nommerLesPages(GtkStack* pile, const char* nom) {
  auto* pages = G_LIST_MODEL(gtk_stack_get_pages(pile));
  for (guint i = 0; i < g_list_model_get_n_items(pages); ++i) {
    auto* page = g_list_model_get_item(pages, i);
    nommer(GTK_ACCESSIBLE(page), nom);
    g_object_unref(page);
  }
  g_object_unref(pages);
}

std::string titreDe(GtkWidget* article) {
  char* titre = nullptr;
  g_object_get(article, "text", &titre, nullptr);
  const TexteDeGLib tenu(titre);
  return titre != nullptr ? titre : "";
}

} // namespace

void nommer(Gtk::Widget& element, const Glib::ustring& nom) {
  nommer(GTK_ACCESSIBLE(element.gobj()), nom.c_str());
}

void nommerLesAscenseurs(Gtk::Widget& racine) {
  parcourir(racine.gobj(), [](GtkWidget* element) {
    if (estUn(element, ascenseurs)) nommer(GTK_ACCESSIBLE(element), fenetre::Apparence::Noms::defilement);
  });
}

void nommerLesArticles(Gtk::Widget& volet) {
  parcourir(volet.gobj(), [](GtkWidget* element) {
    if (!estUn(element, articlesDeMenu)) return;
    gtk_accessible_reset_relation(GTK_ACCESSIBLE(element), GTK_ACCESSIBLE_RELATION_LABELLED_BY);
    nommer(GTK_ACCESSIBLE(element), titreDe(element).c_str());
  });
}

void nommerLeMenu(Gtk::Widget& volet, const Glib::ustring& nom) {
  nommerLesAscenseurs(volet);
  parcourir(volet.gobj(), [&nom](GtkWidget* element) {
    if (estUn(element, enveloppesDeMenu)) nommer(GTK_ACCESSIBLE(element), nom.c_str());
    if (GTK_IS_STACK(element)) nommerLesPages(GTK_STACK(element), nom.c_str());
  });
}

void taire(Gtk::Widget& cadre) {
  g_object_set(cadre.gobj(), "accessible-role", GTK_ACCESSIBLE_ROLE_GROUP, nullptr);
}

void ecrireLesTouches(Gtk::Widget& volet, const std::map<Glib::ustring, Touches>& touches) {
  parcourir(volet.gobj(), [&touches](GtkWidget* element) {
    if (std::string_view(gtk_widget_get_css_name(element)) != "accelerator" || !GTK_IS_LABEL(element)) return;
    auto* article = gtk_widget_get_parent(element);
    const auto trouvees = touches.find(titreDe(article));
    if (trouvees == touches.end()) return;
    const auto& [ecrites, dites] = trouvees->second;
    gtk_label_set_text(GTK_LABEL(element), ecrites.c_str());
    gtk_accessible_update_property(GTK_ACCESSIBLE(article), GTK_ACCESSIBLE_PROPERTY_KEY_SHORTCUTS,
                                   dites.c_str(), -1);
  });
}

} // namespace keltrove::bureau
