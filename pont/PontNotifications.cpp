#include "pont/PontNotifications.hpp"

#include "pont/EnJavaScript.hpp"
#include "pont/MessageDeLaPage.hpp"
#include "pont/TexteCourt.hpp"
#include "socle/Identifiant.hpp"

#include <nlohmann/json.hpp>

namespace keltrove::pont {

using nlohmann::json;

namespace {

constexpr const char* titreParDefaut = "keltrove";
constexpr std::size_t titreMaximal = 80;
constexpr const char* corpsParDefaut = "Ce terminal vous attend.";
constexpr std::size_t corpsMaximal = 200;

std::string appel(const char* fonction, std::string_view argument) {
  return std::string("window.keltrovePont && window.keltrovePont.") + fonction + "(" +
         enJavaScript(argument) + ");";
}

std::string texteDe(const json& message, const char* cle) {
  const auto valeur = message.find(cle);
  return valeur != message.end() && valeur->is_string() ? valeur->get<std::string>() : "";
}

std::string texteCourtDe(const json& message, const char* cle, const char* parDefaut, std::size_t maximum) {
  const auto valeur = message.find(cle);
  return valeur != message.end() ? texteCourt(*valeur, parDefaut, maximum) : parDefaut;
}

} // namespace

PontNotifications::PontNotifications(CentreNotifications& centre, socle::BoucleEvenements& boucle)
    : centre_(centre), boucle_(boucle) {}

PontNotifications::~PontNotifications() {
  centre_.delegue.reset();
}

void PontNotifications::userContentController(std::string_view canal,
                                              const std::optional<std::string>& corps) {
  if (canal != nomDuCanal) return;
  const auto message = lireLeMessage(corps);
  if (message.is_null()) return tracer("message du pont illisible");
  tracer("message reçu de la page : " + *corps);
  const auto action = texteDe(message, "action");
  if (action == "notifier")
    poser(texteDe(message, "id"), texteCourtDe(message, "titre", titreParDefaut, titreMaximal),
          texteCourtDe(message, "corps", corpsParDefaut, corpsMaximal));
  else if (action == "etat")
    redireLEtat();
  else if (action == "reglages")
    ouvrirLesReglagesDeNotification();
}

void PontNotifications::demanderLaPermissionUneSeuleFois() {
  centre_.delegue = DelegueDuCentre{[this](const std::string& idTerminal) { quandOnClique(idTerminal); }};
  centre_.lireLesReglages([this, existe = std::weak_ptr(existe_)](Autorisation autorisation) {
    if (!existe.lock()) return;
    if (autorisation != Autorisation::indeterminee) return quandLAutorisationEstLue(autorisation);
    centre_.retenir(KELTROVE_IDENTIFIANT ".permissionDejaDemandee");
    centre_.demanderLAutorisation([this, existe](bool accordee) {
      if (existe.lock()) direLAccord(accordee);
    });
  });
}

void PontNotifications::redireLEtat() {
  centre_.lireLesReglages([this, existe = std::weak_ptr(existe_)](Autorisation autorisation) {
    if (existe.lock()) quandLAutorisationEstLue(autorisation);
  });
}

void PontNotifications::quandLAutorisationEstLue(Autorisation autorisation) {
  switch (autorisation) {
  case Autorisation::accordee:
    return direLAccord(true);
  case Autorisation::refusee:
    return direLAccord(false);
  case Autorisation::indeterminee:
    return direLEtat("attente");
  case Autorisation::absente:
    return direLEtat("absent");
  }
}

void PontNotifications::direLAccord(bool accorde) {
  permissionAccordee_ = accorde;
  direLEtat(accorde ? "accorde" : "refuse");
}

void PontNotifications::direLEtat(const char* etat) {
  executerDansLaPage(appel("etat", etat));
}

void PontNotifications::poser(const std::string& idTerminal, const std::string& titre,
                              const std::string& corps) {
  const Notification notification{
      .identifiant = "keltrove-" + (idTerminal.empty() ? socle::identifiantAuHasard() : idTerminal),
      .titre = titre,
      .corps = corps,
      .idTerminal = idTerminal,
  };
  centre_.ajouter(notification, [this, identifiant = notification.identifiant,
                                 existe = std::weak_ptr(existe_)](const Remise& remise) {
    if (!existe.lock()) return;
    if (const auto* refus = std::get_if<Refusee>(&remise))
      tracer("le Mac a refusé la notification : " + refus->description);
    else if (std::holds_alternative<Posee>(remise))
      tracer("notification posée : " + identifiant);
  });
}

void PontNotifications::quandOnClique(const std::string& idTerminal) {
  boucle_.poster([this, idTerminal, existe = std::weak_ptr(existe_)] {
    if (!existe.lock()) return;
    if (activer) activer();
    if (!idTerminal.empty()) executerDansLaPage(appel("ouvrir", idTerminal));
  });
}

void PontNotifications::ouvrirLesReglagesDeNotification() {
  centre_.ouvrirLesReglages();
}

void PontNotifications::executerDansLaPage(const std::string& ligne) {
  boucle_.poster([this, ligne, existe = std::weak_ptr(existe_)] {
    if (existe.lock() && vue) vue(ligne);
  });
}

void PontNotifications::tracer(const std::string& ligne) const {
  if (trace) trace(ligne);
}

} // namespace keltrove::pont
