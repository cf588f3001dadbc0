#include "bureau/gtk/VueWeb.hpp"

#include "bureau/gtk/CurseurDeTexte.hpp"
#include "bureau/gtk/DeGLib.hpp"
#include "bureau/gtk/EssaiDeLancement.hpp"
#include "fenetre/LecteurDEcran.hpp"
#include "fenetre/PourLaPage.hpp"
#include "fenetre/VueWebDepot.hpp"
#include "pont/PontNotifications.hpp"

#include <memory>
#include <utility>

#include <glibmm/main.h>
#include <gtkmm/widget.h>

namespace keltrove::bureau {

using fenetre::CauseDEchec;

namespace {

std::string dossierDe(const char* racine) {
  const TexteDeGLib chemin(g_build_filename(racine, "keltrove", nullptr));
  return chemin.get();
}

WebKitWebView* creerLaVue() {
  // Sans ce modèle, un processus neuf servirait depuis le disque une page que le serveur a changée.
  webkit_web_context_set_cache_model(webkit_web_context_get_default(), WEBKIT_CACHE_MODEL_DOCUMENT_VIEWER);
  const Objet<WebKitNetworkSession> session(webkit_network_session_new(
      dossierDe(g_get_user_data_dir()).c_str(), dossierDe(g_get_user_cache_dir()).c_str()));
  const Objet<WebKitSettings> reglages(webkit_settings_new());
  webkit_settings_set_enable_developer_extras(reglages.get(), TRUE);
  // À quoi le serveur reconnaît la fenêtre de l’application.
  webkit_settings_set_user_agent_with_application_details(reglages.get(),
                                                          fenetre::Apparence::nomDeLApplication, nullptr);
  webkit_settings_set_enable_back_forward_navigation_gestures(reglages.get(), FALSE);
  // Un programme autorisé à écrire dans le presse-papiers le fait quand il veut, sans attendre un geste.
  webkit_settings_set_javascript_can_access_clipboard(reglages.get(), TRUE);
  const Objet<WebKitUserContentManager> contenus(webkit_user_content_manager_new());
  auto* ouverture =
      webkit_user_script_new(fenetre::VueWebDepot::scriptDOuverture, WEBKIT_USER_CONTENT_INJECT_TOP_FRAME,
                             WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_START, nullptr, nullptr);
  webkit_user_content_manager_add_script(contenus.get(), ouverture);
  webkit_user_script_unref(ouverture);
  return WEBKIT_WEB_VIEW(g_object_new(WEBKIT_TYPE_WEB_VIEW, "network-session", session.get(), "settings",
                                      reglages.get(), "user-content-manager", contenus.get(), nullptr));
}

std::optional<std::string> texteDe(GObject* vue, GAsyncResult* resultat) {
  const Objet<JSCValue> valeur(
      webkit_web_view_evaluate_javascript_finish(WEBKIT_WEB_VIEW(vue), resultat, nullptr));
  if (!valeur || !jsc_value_is_string(valeur.get())) return std::nullopt;
  const TexteDeGLib texte(jsc_value_to_string(valeur.get()));
  return texte.get();
}

// Rien pour une valeur sans JSON : non définie, cyclique…
std::optional<std::string> enJSON(JSCValue* valeur) {
  const TexteDeGLib json(jsc_value_to_json(valeur, 0));
  if (json) return json.get();
  jsc_context_clear_exception(jsc_value_get_context(valeur));
  return std::nullopt;
}

fenetre::DemandeDAdresse demandeDe(WebKitNavigationAction* action, bool fenetreNeuve) {
  return {.adresse = webkit_uri_request_get_uri(webkit_navigation_action_get_request(action)),
          .fenetreNeuve = fenetreNeuve,
          .geste = webkit_navigation_action_is_user_gesture(action) != 0 ? fenetre::Geste::deLUtilisateur
                                                                         : fenetre::Geste::aucun};
}

} // namespace

VueWeb::VueWeb(fenetre::ObservateurDeLaVue& observateur)
    : observateur_(observateur), vue_(creerLaVue()), widget_(Glib::wrap(GTK_WIDGET(vue_))) {
  g_object_ref_sink(vue_);
  figerLeTexteCacheDe(GTK_WIDGET(vue_));
  g_signal_connect(vue_, "load-changed",
                   G_CALLBACK(+[](WebKitWebView*, WebKitLoadEvent evenement, VueWeb* moi) {
                     moi->quandLeChargementChange(evenement);
                   }),
                   this);
  g_signal_connect(
      vue_, "load-failed",
      G_CALLBACK(+[](WebKitWebView*, WebKitLoadEvent, const char*, GError* erreur, VueWeb* moi) -> gboolean {
        moi->quandLeChargementEchoue(*erreur);
        return TRUE; // pas de page d’erreur de WebKit : l’écran d’attente explique
      }),
      this);
  g_signal_connect(vue_, "web-process-terminated",
                   G_CALLBACK(+[](WebKitWebView*, WebKitWebProcessTerminationReason raison, VueWeb* moi) {
                     moi->quandLeProcessusSArrete(raison);
                   }),
                   this);
  g_signal_connect(vue_, "notify::estimated-load-progress",
                   G_CALLBACK(+[](WebKitWebView*, GParamSpec*, VueWeb* moi) {
                     moi->observateur_.quandNavigationAvance();
                   }),
                   this);
  ouvrirLeCanal<pont::PontNotifications::nomDuCanal>();
  ouvrirLeCanal<fenetre::canalDuLecteur>();
  garderLaPage();
  collerAuClavier();
  preparerLeProgramme();
}

// Évaluer lance le programme qui dessine la page, bien avant que le serveur ne réponde : il se prépare
// pendant que la fenêtre se construit. Mort d’ici là, un autre naît avec la page.
void VueWeb::preparerLeProgramme() {
  if (!peutLancerUnProcessus()) return;
  webkit_web_view_evaluate_javascript(vue_, "0", -1, nullptr, nullptr, nullptr, nullptr, nullptr);
}

// Maj+Inser, pour WebKit, est le presse-papiers ; dans un terminal c’est la sélection, et Ctrl+Maj+Inser le
// presse-papiers. La page est prévenue, car rien d’autre ne lui dit lequel des deux elle reçoit.
void VueWeb::collerAuClavier() {
  auto* raccourcis = gtk_shortcut_controller_new();
  gtk_event_controller_set_propagation_phase(raccourcis, GTK_PHASE_CAPTURE);
  const auto ajouter = [&](const char* touches, GtkShortcutFunc coller) {
    gtk_shortcut_controller_add_shortcut(GTK_SHORTCUT_CONTROLLER(raccourcis),
                                         gtk_shortcut_new(gtk_shortcut_trigger_parse_string(touches),
                                                          gtk_callback_action_new(coller, this, nullptr)));
  };
  ajouter("<Shift>Insert|<Shift>KP_Insert", [](GtkWidget*, GVariant*, gpointer moi) -> gboolean {
    auto* vueWeb = static_cast<VueWeb*>(moi);
    vueWeb->executer(fenetre::PourLaPage::voiciLaSelection, "{}");
    vueWeb->editer("PasteGlobalSelection");
    return TRUE;
  });
  ajouter("<Control><Shift>Insert|<Control><Shift>KP_Insert",
          [](GtkWidget*, GVariant*, gpointer moi) -> gboolean {
            static_cast<VueWeb*>(moi)->editer("Paste");
            return TRUE;
          });
  gtk_widget_add_controller(GTK_WIDGET(vue_), raccourcis);
}

template <const char* const& canal>
void VueWeb::ouvrirLeCanal() {
  auto* contenus = webkit_web_view_get_user_content_manager(vue_);
  g_signal_connect(contenus, (std::string("script-message-received::") + canal).c_str(),
                   G_CALLBACK(+[](WebKitUserContentManager*, JSCValue* corps, VueWeb* moi) {
                     moi->observateur_.quandLaPageEcrit(canal, pont::lireLeMessage(enJSON(corps)));
                   }),
                   this);
  webkit_user_content_manager_register_script_message_handler(contenus, canal, nullptr);
}

VueWeb::~VueWeb() {
  g_signal_handlers_disconnect_by_data(webkit_web_view_get_user_content_manager(vue_), this);
  g_signal_handlers_disconnect_by_data(vue_, this);
  g_object_unref(vue_);
}

// Une fenêtre de plus, ou la page qui s’en irait, ne sont jamais pour nous.
void VueWeb::garderLaPage() {
  g_signal_connect(
      vue_, "decide-policy",
      G_CALLBACK(+[](WebKitWebView*, WebKitPolicyDecision* decision, WebKitPolicyDecisionType sorte,
                     VueWeb* moi) -> gboolean { return moi->decider(decision, sorte); }),
      this);
  g_signal_connect(vue_, "create",
                   G_CALLBACK(+[](WebKitWebView*, WebKitNavigationAction* action, VueWeb* moi) -> GtkWidget* {
                     moi->observateur_.laPageVeutOuvrir(demandeDe(action, true));
                     return nullptr;
                   }),
                   this);
  g_signal_connect(vue_, "permission-request",
                   G_CALLBACK(+[](WebKitWebView*, WebKitPermissionRequest* demande, VueWeb* moi) -> gboolean {
                     return moi->permettre(demande);
                   }),
                   this);
}

// La page servie colle elle-même, depuis son menu.
bool VueWeb::permettre(WebKitPermissionRequest* demande) {
  const char* adresse = webkit_web_view_get_uri(vue_);
  if (!WEBKIT_IS_CLIPBOARD_PERMISSION_REQUEST(demande) || adresse == nullptr ||
      !observateur_.estLaPage(adresse))
    return false;
  webkit_permission_request_allow(demande);
  return true;
}

bool VueWeb::decider(WebKitPolicyDecision* decision, WebKitPolicyDecisionType sorte) {
  if (sorte == WEBKIT_POLICY_DECISION_TYPE_RESPONSE) return false;
  auto* action =
      webkit_navigation_policy_decision_get_navigation_action(WEBKIT_NAVIGATION_POLICY_DECISION(decision));
  const bool fenetreNeuve = sorte == WEBKIT_POLICY_DECISION_TYPE_NEW_WINDOW_ACTION;
  if (observateur_.laPageVeutOuvrir(demandeDe(action, fenetreNeuve))) return false;
  webkit_policy_decision_ignore(decision);
  return true;
}

void VueWeb::charger(const std::string& adresse) {
  if (!peutLancerUnProcessus()) {
    observateur_.quandNavigationRatee({.cause = CauseDEchec::lancementRefuse});
    return;
  }
  sollicitee_ = true;
  const Objet<WebKitURIRequest> requete(webkit_uri_request_new(adresse.c_str()));
  soup_message_headers_replace(webkit_uri_request_get_http_headers(requete.get()), "Cache-Control",
                               "no-cache");
  webkit_web_view_load_request(vue_, requete.get());
}

void VueWeb::arreterLeChargement() {
  webkit_web_view_stop_loading(vue_);
}

void VueWeb::evaluer(const std::string& expression, std::function<void(std::optional<std::string>)> fini) {
  // Sans page demandée, WebKit lancerait pour rien un programme que le système vient peut-être de refuser.
  if (!sollicitee_) {
    fini(std::nullopt);
    return;
  }
  using Suite = std::function<void(std::optional<std::string>)>;
  webkit_web_view_evaluate_javascript(
      vue_, expression.data(), static_cast<gssize>(expression.size()), nullptr, nullptr, nullptr,
      [](GObject* vue, GAsyncResult* resultat, gpointer donnees) {
        const std::unique_ptr<Suite> suite(static_cast<Suite*>(donnees));
        (*suite)(texteDe(vue, resultat));
      },
      new Suite(std::move(fini)));
}

void VueWeb::appeler(const char* corps, const nlohmann::json& arguments) {
  const auto appel = fenetre::PourLaPage::appel(corps, arguments);
  executer(appel.fonction, appel.arguments.c_str());
}

void VueWeb::quandUnGlissementEntre(std::function<void(bool)> fini) {
  executer(fenetre::PourLaPage::attendreUnGlissement, "{}", std::move(fini));
}

void VueWeb::executer(const std::string& fonction, const char* arguments,
                      std::function<void(bool abouti)> fini) {
  using Suite = std::function<void(bool)>;
  GVariantDict valeurs;
  g_variant_dict_init(&valeurs, nullptr);
  g_variant_dict_insert(&valeurs, "keltroveArguments", "s", arguments);
  webkit_web_view_call_async_javascript_function(
      vue_, fonction.data(), static_cast<gssize>(fonction.size()), g_variant_dict_end(&valeurs), nullptr,
      nullptr, nullptr,
      [](GObject* vue, GAsyncResult* resultat, gpointer donnees) {
        const std::unique_ptr<Suite> suite(static_cast<Suite*>(donnees));
        const Objet<JSCValue> valeur(
            webkit_web_view_call_async_javascript_function_finish(WEBKIT_WEB_VIEW(vue), resultat, nullptr));
        if (*suite) (*suite)(valeur != nullptr);
      },
      new Suite(std::move(fini)));
}

void VueWeb::editer(const char* commande) {
  webkit_web_view_execute_editing_command(vue_, commande);
}

void VueWeb::siLEditionPeut(const char* commande, std::function<void(bool)> fini) {
  using Suite = std::function<void(bool)>;
  webkit_web_view_can_execute_editing_command(
      vue_, commande, nullptr,
      [](GObject* vue, GAsyncResult* resultat, gpointer donnees) {
        const std::unique_ptr<Suite> suite(static_cast<Suite*>(donnees));
        (*suite)(webkit_web_view_can_execute_editing_command_finish(WEBKIT_WEB_VIEW(vue), resultat, nullptr));
      },
      new Suite(std::move(fini)));
}

void VueWeb::peindreLeFond(const fenetre::Apparence::Couleur& couleur) {
  const GdkRGBA fond{static_cast<float>(couleur.rouge), static_cast<float>(couleur.vert),
                     static_cast<float>(couleur.bleu), static_cast<float>(couleur.opacite)};
  webkit_web_view_set_background_color(vue_, &fond);
}

void VueWeb::quandLeChargementChange(WebKitLoadEvent evenement) {
  if (evenement == WEBKIT_LOAD_STARTED) {
    rate_ = false;
    observateur_.quandNavigationCommence();
  } else if (evenement == WEBKIT_LOAD_FINISHED && !rate_) {
    observateur_.quandNavigationFinie();
  }
}

void VueWeb::quandLeChargementEchoue(const GError& erreur) {
  rate_ = true;
  const bool annulee = g_error_matches(&erreur, WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_CANCELLED);
  observateur_.quandNavigationRatee(
      {.cause = annulee ? CauseDEchec::annulation : CauseDEchec::chargement, .description = erreur.message});
}

void VueWeb::quandLeProcessusSArrete(WebKitWebProcessTerminationReason raison) {
  rate_ = true;
  const bool memoire = raison == WEBKIT_WEB_PROCESS_EXCEEDED_MEMORY_LIMIT;
  observateur_.quandNavigationRatee({.cause = memoire ? CauseDEchec::memoireDepassee : CauseDEchec::arret});
}

} // namespace keltrove::bureau
