#include "bureau/gtk/DepotGtk.hpp"

#include "bureau/gtk/GlissementGtk.hpp"
#include "bureau/gtk/X11.hpp"

#include <utility>

#include <glibmm/main.h>
#include <nlohmann/json_fwd.hpp>

namespace keltrove::bureau {

namespace {

constexpr unsigned int entreDeuxRegards = 300; // millisecondes

} // namespace

DepotGtk::DepotGtk(VueWeb& vueWeb, std::function<void(std::size_t)> ecarterDesIllisibles)
    : vueWeb_(vueWeb), vue_(vueWeb.widget().gobj()),
      suivi_({.appelerLaPage = [this](const char* corps,
                                      const nlohmann::json& arguments) { vueWeb_.appeler(corps, arguments); },
              .rendreALaVueWeb = [this] { rendreAWebKit(); },
              .conclure = [this](bool remis) { conclure(remis); },
              .ecarterDesIllisibles = std::move(ecarterDesIllisibles)}) {
  garderCelleDeWebKit();
  poserLaNotre();
}

DepotGtk::~DepotGtk() {
  guet_.disconnect();
  g_clear_object(&courant_);
}

// Retirer sa cible à WebKit, puis la lui rendre, arrête le programme : on ne remplace que sa réponse.
void DepotGtk::garderCelleDeWebKit() {
  auto* controleurs = gtk_widget_observe_controllers(vue_);
  for (guint i = 0; i < g_list_model_get_n_items(controleurs); ++i) {
    auto* controleur = g_list_model_get_item(controleurs, i);
    if (GTK_IS_DROP_TARGET_ASYNC(controleur)) celleDeWebKit_ = GTK_DROP_TARGET_ASYNC(controleur);
    g_object_unref(controleur); // la vue le tient
  }
  g_object_unref(controleurs);
  if (celleDeWebKit_ == nullptr) return;
  accordDeWebKit_ = g_signal_handler_find(celleDeWebKit_, G_SIGNAL_MATCH_ID,
                                          g_signal_lookup("accept", GTK_TYPE_DROP_TARGET_ASYNC), 0, nullptr,
                                          nullptr, nullptr);
  if (accordDeWebKit_ != 0) g_signal_handler_block(celleDeWebKit_, accordDeWebKit_);
  notreAccord_ =
      g_signal_connect(celleDeWebKit_, "accept",
                       G_CALLBACK(+[](GtkDropTargetAsync*, GdkDrop* glissement, DepotGtk* moi) -> gboolean {
                         return !pourraitPorterDesFichiers(glissement) && moi->accepterPourWebKit(glissement);
                       }),
                       this);
}

bool DepotGtk::accepterPourWebKit(GdkDrop* glissement) {
  g_signal_handler_block(celleDeWebKit_, notreAccord_);
  if (accordDeWebKit_ != 0) g_signal_handler_unblock(celleDeWebKit_, accordDeWebKit_);
  gboolean accepte = FALSE;
  g_signal_emit_by_name(celleDeWebKit_, "accept", glissement, &accepte);
  if (accordDeWebKit_ != 0) g_signal_handler_block(celleDeWebKit_, accordDeWebKit_);
  g_signal_handler_unblock(celleDeWebKit_, notreAccord_);
  return accepte;
}

void DepotGtk::poserLaNotre() {
  auto* cible = gtk_drop_target_async_new(nullptr, GDK_ACTION_COPY);
  gtk_event_controller_set_propagation_phase(GTK_EVENT_CONTROLLER(cible), GTK_PHASE_CAPTURE);
  g_signal_connect(cible, "accept",
                   G_CALLBACK(+[](GtkDropTargetAsync*, GdkDrop* glissement, DepotGtk* moi) -> gboolean {
                     return moi->accepter(glissement);
                   }),
                   this);
  g_signal_connect(cible, "drag-enter",
                   G_CALLBACK(+[](GtkDropTargetAsync*, GdkDrop*, double x, double y, DepotGtk* moi) {
                     return moi->entrer(x, y);
                   }),
                   this);
  g_signal_connect(cible, "drag-motion",
                   G_CALLBACK(+[](GtkDropTargetAsync*, GdkDrop*, double x, double y, DepotGtk* moi) {
                     return moi->bouger(x, y);
                   }),
                   this);
  g_signal_connect(cible, "drag-leave",
                   G_CALLBACK(+[](GtkDropTargetAsync*, GdkDrop*, DepotGtk* moi) { moi->sortir(); }), this);
  g_signal_connect(
      cible, "drop",
      G_CALLBACK(+[](GtkDropTargetAsync*, GdkDrop*, double x, double y, DepotGtk* moi) -> gboolean {
        moi->deposer(x, y);
        return TRUE;
      }),
      this);
  gtk_widget_add_controller(vue_, GTK_EVENT_CONTROLLER(cible));
}

bool DepotGtk::accepter(GdkDrop* glissement) {
  if (!pourraitPorterDesFichiers(glissement)) return false;
  if (glissement != courant_) examiner(glissement);
  return true;
}

void DepotGtk::examiner(GdkDrop* glissement) {
  suivi_.commencer();
  g_set_object(&courant_, glissement);
  deWebKit_ = {};
  lireCeQuIlPorte(glissement, temoin_.garder([this, glissement](fenetre::Portes portes) {
    if (glissement == courant_) suivi_.apprendre(std::move(portes));
  }));
}

// GTK ne change pas de cible en plein glissement : WebKit reçoit de nous ce qu’il aurait reçu de lui.
void DepotGtk::rendreAWebKit() {
  if (accepterPourWebKit(courant_)) direAWebKit("drag-enter");
}

GdkDragAction DepotGtk::direAWebKit(const char* signal) {
  if (celleDeWebKit_ != nullptr) g_signal_emit_by_name(celleDeWebKit_, signal, courant_, x_, y_, &deWebKit_);
  return deWebKit_ != GdkDragAction{} ? deWebKit_ : GDK_ACTION_COPY;
}

GdkDragAction DepotGtk::entrer(double x, double y) {
  x_ = x;
  y_ = y;
  suivi_.entrer({.x = x, .y = y}, mesures());
  if (estAWebKit()) rendreAWebKit();
  guetterLaSource();
  return GDK_ACTION_COPY;
}

// GTK ne dit la mort de la source d’un glissement qu’au début du suivant.
void DepotGtk::guetterLaSource() {
  guet_.disconnect();
  guet_ = Glib::signal_timeout().connect(
      [this] {
        if (suivi_.survole() && !aEncoreSaSource(courant_)) suivi_.interrompre();
        return suivi_.survole();
      },
      entreDeuxRegards);
}

GdkDragAction DepotGtk::bouger(double x, double y) {
  x_ = x;
  y_ = y;
  suivi_.bouger({.x = x, .y = y}, mesures());
  return estAWebKit() ? direAWebKit("drag-motion") : GDK_ACTION_COPY;
}

void DepotGtk::sortir() {
  suivi_.sortir();
  if (estAWebKit()) quitterWebKit();
}

void DepotGtk::quitterWebKit() {
  if (celleDeWebKit_ != nullptr) g_signal_emit_by_name(celleDeWebKit_, "drag-leave", courant_);
}

// Lâché avant que WebKit ne l’ait lu, il s’y perdrait.
void DepotGtk::deposer(double x, double y) {
  if (estAWebKit() && deWebKit_ != GdkDragAction{}) {
    gboolean pris = FALSE;
    g_signal_emit_by_name(celleDeWebKit_, "drop", courant_, x, y, &pris);
    return;
  }
  if (estAWebKit()) quitterWebKit();
  suivi_.deposer({.x = x, .y = y}, mesures());
}

void DepotGtk::conclure(bool remis) {
  gdk_drop_finish(courant_, remis ? GDK_ACTION_COPY : GdkDragAction{});
}

// Sans bouger encore, la source ne saurait pas que l’on n’en veut plus, et attendrait sans fin
// la suite du dépôt.
void DepotGtk::couvrir(bool couverte) {
  if (couverte && suivi_.survole()) gdk_drop_status(courant_, GdkDragAction{}, GdkDragAction{});
  suivi_.couvrir(couverte);
}

fenetre::MesuresDeLaVue DepotGtk::mesures() const {
  return mesurer(vue_, vueWeb_.zoom());
}

} // namespace keltrove::bureau
