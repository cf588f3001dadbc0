#include "bureau/gtk/DepotGtk.hpp"

#include "bureau/gtk/GlissementGtk.hpp"
#include "bureau/gtk/X11.hpp"

#include <utility>

#include <glibmm/main.h>
#include <nlohmann/json_fwd.hpp>

namespace keltrove::bureau {

namespace {

// Millisecondes.
constexpr unsigned int entreDeuxRegards = 300;
constexpr unsigned int suiteDuDepot = 5000;

// De places dites par la source avant de la lire : GTK donne aussi pour un mouvement celle où elle entre.
constexpr int avantDeLire = 2;

constexpr auto toutes = static_cast<GdkDragAction>(GDK_ACTION_COPY | GDK_ACTION_MOVE | GDK_ACTION_LINK);

bool estNeDansLaPage(GdkDrop* glissement) {
  return gdk_drop_get_drag(glissement) != nullptr;
}

} // namespace

DepotGtk::DepotGtk(VueWeb& vueWeb, std::function<void(std::size_t)> ecarterDesIllisibles)
    : vueWeb_(vueWeb), vue_(vueWeb.widget().gobj()),
      suivi_({.appelerLaPage = [this](const char* corps,
                                      const nlohmann::json& arguments) { vueWeb_.appeler(corps, arguments); },
              .rendreALaVueWeb = [this] { rendreAWebKit(); },
              .quitterLaVueWeb = [this] { quitterWebKit(courant_); },
              .deposerDansLaVueWeb = [this] { deposerDansWebKit(); },
              .conclure = [this](bool remis) { conclure(remis); },
              .ecarterDesIllisibles = std::move(ecarterDesIllisibles)}) {
  garderCelleDeWebKit();
  poserLaNotre();
}

DepotGtk::~DepotGtk() {
  guet_.disconnect();
  g_clear_object(&courant_);
}

// Retirer sa cible à WebKit, puis la lui rendre, arrête le programme : on ne remplace que ses réponses. Son
// départ en est une : GTK le lui dit même d’un glissement qu’elle a refusé, et celui qui suit sous Wayland un
// dépôt le lui ferait oublier pendant que la page le découvre.
void DepotGtk::garderCelleDeWebKit() {
  auto* controleurs = gtk_widget_observe_controllers(vue_);
  for (guint i = 0; i < g_list_model_get_n_items(controleurs); ++i) {
    auto* controleur = g_list_model_get_item(controleurs, i);
    if (GTK_IS_DROP_TARGET_ASYNC(controleur)) celleDeWebKit_ = GTK_DROP_TARGET_ASYNC(controleur);
    g_object_unref(controleur); // la vue le tient
  }
  g_object_unref(controleurs);
  if (celleDeWebKit_ == nullptr) return;
  repondreAuLieuDeWebKit(accord_,
                         G_CALLBACK(+[](GtkDropTargetAsync*, GdkDrop* glissement, DepotGtk* moi) -> gboolean {
                           return estNeDansLaPage(glissement) && moi->accepterPourWebKit(glissement);
                         }));
  repondreAuLieuDeWebKit(depart_, G_CALLBACK(+[](GtkDropTargetAsync*, GdkDrop* glissement, DepotGtk* moi) {
                           if (estNeDansLaPage(glissement)) moi->quitterWebKit(glissement);
                         }));
}

void DepotGtk::repondreAuLieuDeWebKit(Reponse& reponse, GCallback notre) {
  reponse.deWebKit = g_signal_handler_find(celleDeWebKit_, G_SIGNAL_MATCH_ID,
                                           g_signal_lookup(reponse.signal, GTK_TYPE_DROP_TARGET_ASYNC), 0,
                                           nullptr, nullptr, nullptr);
  if (reponse.deWebKit != 0) g_signal_handler_block(celleDeWebKit_, reponse.deWebKit);
  reponse.notre = g_signal_connect(celleDeWebKit_, reponse.signal, notre, this);
}

template <typename... Resultat>
void DepotGtk::laisserRepondreWebKit(const Reponse& reponse, GdkDrop* glissement, Resultat*... resultat) {
  g_signal_handler_block(celleDeWebKit_, reponse.notre);
  if (reponse.deWebKit != 0) g_signal_handler_unblock(celleDeWebKit_, reponse.deWebKit);
  g_signal_emit_by_name(celleDeWebKit_, reponse.signal, glissement, resultat...);
  if (reponse.deWebKit != 0) g_signal_handler_block(celleDeWebKit_, reponse.deWebKit);
  g_signal_handler_unblock(celleDeWebKit_, reponse.notre);
}

bool DepotGtk::accepterPourWebKit(GdkDrop* glissement) {
  gboolean accepte = FALSE;
  laisserRepondreWebKit(accord_, glissement, &accepte);
  return accepte;
}

void DepotGtk::quitterWebKit(GdkDrop* glissement) {
  laisserRepondreWebKit(depart_, glissement);
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
  laNotre_ = cible;
}

// Ce que WebKit ne sait pas lire ne nous dit rien non plus.
bool DepotGtk::estANous(GdkDrop* glissement) const {
  return celleDeWebKit_ != nullptr && !estNeDansLaPage(glissement) &&
         gdk_content_formats_match(gtk_drop_target_async_get_formats(celleDeWebKit_),
                                   gdk_drop_get_formats(glissement));
}

bool DepotGtk::accepter(GdkDrop* glissement) {
  if (!estANous(glissement)) return false;
  if (glissement == courant_) return true;
  suivi_.commencer();
  g_set_object(&courant_, glissement);
  gtk_drop_target_async_set_actions(laNotre_, GDK_ACTION_COPY);
  places_ = 0;
  lu_ = false;
  return true;
}

// Une source que l’on lâche au moment où elle entre ne répond plus, et sous X la lecture restée sans réponse
// prendrait celle du glissement suivant, qui n’arriverait jamais. On ne lit donc que celle qui a redit sa
// place, ce qu’elle ne fait que sachant que l’on veut d’elle, ou qui a été lâchée chez nous.
void DepotGtk::lire() {
  lu_ = true;
  lireCeQuIlPorte(courant_, temoin_.garder([this, glissement = courant_](fenetre::Portes portes) {
    if (glissement == courant_) suivi_.apprendre(std::move(portes));
  }));
}

// GTK ne change pas de cible en plein glissement : WebKit reçoit de nous ce qu’il aurait reçu de lui. Il
// répond d’abord ce que la page voulait du glissement d’avant, et lâcherait celui-ci dans le vide s’il ne l’a
// pas encore lu : seule la page dit quand elle l’a vu.
void DepotGtk::rendreAWebKit() {
  vueWeb_.quandUnGlissementEntre(temoin_.garder([this, remise = ++remise_](bool vu) {
    if (remise == remise_) suivi_.quandLaPageRepond(vu);
  }));
  accepterPourWebKit(courant_);
  direAWebKit("drag-enter");
}

// Ce que la page n’a pas encore vu ne peut qu’être copié, comme des fichiers ; le reste, selon ce qu’elle
// veut.
GdkDragAction DepotGtk::direAWebKit(const char* signal) {
  GdkDragAction reponse{};
  g_signal_emit_by_name(celleDeWebKit_, signal, courant_, x_, y_, &reponse);
  const bool vu = suivi_.laPageLeVoit();
  gtk_drop_target_async_set_actions(laNotre_, vu ? toutes : GDK_ACTION_COPY);
  return vu ? reponse : GDK_ACTION_COPY;
}

// La page n’a peut-être vu qu’une entrée, et ailleurs : elle n’accepte que ce qui la survole.
void DepotGtk::deposerDansWebKit() {
  direAWebKit("drag-motion");
  gboolean pris = FALSE;
  g_signal_emit_by_name(celleDeWebKit_, "drop", courant_, x_, y_, &pris);
  if (!pris) conclure(false);
}

GdkDragAction DepotGtk::entrer(double x, double y) {
  x_ = x;
  y_ = y;
  suivi_.entrer({.x = x, .y = y}, mesures());
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
  if (!lu_ && ++places_ == avantDeLire) lire();
  return suivi_.estALaVueWeb() ? direAWebKit("drag-motion") : GDK_ACTION_COPY;
}

void DepotGtk::sortir() {
  suivi_.sortir();
}

void DepotGtk::deposer(double x, double y) {
  x_ = x;
  y_ = y;
  suivi_.deposer({.x = x, .y = y}, mesures());
  if (!lu_) lire();
  if (suivi_.survole()) attendreLaSuite();
}

// Ni une source ni une page qui se taisent ne laissent l’autre programme attendre.
void DepotGtk::attendreLaSuite() {
  guet_.disconnect();
  guet_ = Glib::signal_timeout().connect(
      [this] {
        suivi_.interrompre();
        return false;
      },
      suiteDuDepot);
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
