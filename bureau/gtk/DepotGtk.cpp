#include "bureau/gtk/DepotGtk.hpp"

#include "bureau/gtk/GlissementGtk.hpp"

#include <utility>

#include <nlohmann/json.hpp>

namespace keltrove::bureau {

DepotGtk::DepotGtk(VueWeb& vueWeb)
    : vueWeb_(vueWeb), vue_(vueWeb.widget().gobj()),
      depot_(
          [this](const char* corps, const nlohmann::json& arguments) { vueWeb_.appeler(corps, arguments); }) {
  garderCelleDeWebKit();
  poserLaNotre();
}

DepotGtk::~DepotGtk() {
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
                         return !moi->estANous(glissement) && moi->accepterPourWebKit(glissement);
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
                     return moi->estANous(glissement);
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
  g_signal_connect(cible, "drop",
                   G_CALLBACK(+[](GtkDropTargetAsync*, GdkDrop* glissement, double x, double y,
                                  DepotGtk* moi) -> gboolean {
                     moi->deposer(glissement, x, y);
                     return TRUE;
                   }),
                   this);
  gtk_widget_add_controller(vue_, GTK_EVENT_CONTROLLER(cible));
}

bool DepotGtk::estANous(GdkDrop* glissement) {
  if (!pourraitPorterDesFichiers(glissement)) return false;
  if (glissement != courant_) examiner(glissement);
  return contenu_ != Contenu::autre;
}

void DepotGtk::examiner(GdkDrop* glissement) {
  g_set_object(&courant_, glissement);
  contenu_ = Contenu::inconnu;
  chemins_.clear();
  lache_ = false;
  lireLesChemins(glissement,
                 [this, glissement, existe = std::weak_ptr(existe_)](std::vector<std::string> chemins) {
                   if (existe.lock() && glissement == courant_) quandOnSaitCeQuIlPorte(std::move(chemins));
                 });
}

void DepotGtk::quandOnSaitCeQuIlPorte(std::vector<std::string> chemins) {
  contenu_ = chemins.empty() ? Contenu::autre : Contenu::fichiers;
  chemins_ = std::move(chemins);
  if (!dessus_) return;
  depot_.draggingEntered(glissement());
  if (lache_)
    remettre(courant_);
  else if (contenu_ == Contenu::autre)
    rendreAWebKit();
}

// GTK ne redemande son accord à une cible que si le glissement revient sur elle : la vue s’efface un instant,
// et notre sortie la rétablit.
void DepotGtk::rendreAWebKit() {
  gtk_widget_set_can_target(vue_, FALSE);
}

GdkDragAction DepotGtk::entrer(double x, double y) {
  point_ = {.x = x, .y = y};
  dessus_ = true;
  if (contenu_ != Contenu::inconnu) depot_.draggingEntered(glissement());
  return operation();
}

GdkDragAction DepotGtk::bouger(double x, double y) {
  point_ = {.x = x, .y = y};
  depot_.draggingUpdated(glissement());
  return operation();
}

GdkDragAction DepotGtk::operation() const {
  return contenu_ == Contenu::autre ? GdkDragAction{} : GDK_ACTION_COPY;
}

void DepotGtk::sortir() {
  dessus_ = false;
  gtk_widget_set_can_target(vue_, TRUE);
  depot_.draggingExited();
}

void DepotGtk::deposer(GdkDrop* glissement, double x, double y) {
  point_ = {.x = x, .y = y};
  if (contenu_ == Contenu::inconnu)
    lache_ = true;
  else
    remettre(glissement);
}

void DepotGtk::remettre(GdkDrop* glissement) {
  const bool remis = depot_.performDragOperation(this->glissement()).value_or(false);
  depot_.concludeDragOperation();
  dessus_ = false;
  gdk_drop_finish(glissement, remis ? GDK_ACTION_COPY : GdkDragAction{});
}

fenetre::Glissement DepotGtk::glissement() const {
  return {.chemins = chemins_,
          .point = point_,
          .vue = {.hauteur = static_cast<double>(gtk_widget_get_height(vue_)), .zoom = vueWeb_.zoom()}};
}

} // namespace keltrove::bureau
