// Une fenêtre WebKitGTK nue, réglages par défaut : l’étalon des mesures de démarrage.
#include <webkit/webkit.h>

static const char* adresse;

static void quandOnActive(GtkApplication* application, gpointer inutilise) {
  (void)inutilise;
  GtkWidget* fenetre = gtk_application_window_new(application);
  GtkWidget* vue = webkit_web_view_new();
  gtk_window_set_default_size(GTK_WINDOW(fenetre), 1280, 820);
  gtk_window_set_child(GTK_WINDOW(fenetre), vue);
  webkit_web_view_load_uri(WEBKIT_WEB_VIEW(vue), adresse);
  gtk_window_present(GTK_WINDOW(fenetre));
}

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  adresse = argv[1];
  GtkApplication* application = gtk_application_new("fr.zelcor.nue", G_APPLICATION_NON_UNIQUE);
  g_signal_connect(application, "activate", G_CALLBACK(quandOnActive), NULL);
  const int etat = g_application_run(G_APPLICATION(application), 0, NULL);
  g_object_unref(application);
  return etat;
}
