#include "pont/PontNotifications.hpp"

#include "pont/EnJavaScript.hpp"
#include "pont/TexteCourt.hpp"
#include "socle/Identifiant.hpp"

namespace keltrove::pont {
namespace {

constexpr const char* titreParDefaut = "keltrove";
constexpr std::size_t titreMaximal = 80;
constexpr const char* corpsParDefaut = "Ce terminal vous attend.";
constexpr std::size_t corpsMaximal = 200;

std::string appel(const char* fonction, std::string_view argument) {
  return std::string("window.keltrovePont && window.keltrovePont.") + fonction + "(" +
         enJavaScript(argument) + ");";
}

// La page dit « aucun terminal » en le taisant ou d’un texte vide.
std::optional<std::string> terminalDe(const ObjetDeLaPage& message) {
  auto terminal = message.texte("id");
  return terminal && !terminal->empty() ? terminal : std::nullopt;
}

} // namespace

PontNotifications::PontNotifications(CentreNotifications& centre, socle::BoucleEvenements& boucle)
    : centre_(centre), boucle_(boucle) {}

PontNotifications::~PontNotifications() {
  centre_.deleguerA(nullptr);
}

void PontNotifications::userContentController(std::string_view canal, const MessageDeLaPage& message) {
  if (canal != nomDuCanal) return;
  const auto* objet = std::get_if<ObjetDeLaPage>(&message);
  if (objet == nullptr) return tracer("message du pont illisible");
  tracer("message reçu de la page : " + objet->forme);
  const auto action = objet->texte("action");
  if (action == "notifier")
    poser(terminalDe(*objet), texteCourt(objet->texte("titre"), titreParDefaut, titreMaximal),
          texteCourt(objet->texte("corps"), corpsParDefaut, corpsMaximal));
  else if (action == "etat")
    redireLEtat();
  else if (action == "reglages")
    ouvrirLesReglagesDeNotification();
}

void PontNotifications::demanderLaPermissionUneSeuleFois() {
  centre_.deleguerA(this);
  centre_.lireLesReglages(temoin_.garder([this](Autorisation autorisation) {
    if (autorisation != Autorisation::indeterminee) return quandLAutorisationEstLue(autorisation);
    centre_.retenir(KELTROVE_IDENTIFIANT ".permissionDejaDemandee");
    centre_.demanderLAutorisation(temoin_.garder([this](bool accordee) { direLAccord(accordee); }));
  }));
}

void PontNotifications::redireLEtat() {
  centre_.lireLesReglages(
      temoin_.garder([this](Autorisation autorisation) { quandLAutorisationEstLue(autorisation); }));
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

void PontNotifications::poser(const std::optional<std::string>& terminal, const std::string& titre,
                              const std::string& corps) {
  const auto identifiant = "keltrove-" + (terminal ? *terminal : socle::identifiantAuHasard());
  centre_.ajouter({.identifiant = identifiant, .titre = titre, .corps = corps, .terminal = terminal},
                  temoin_.garder([this, identifiant](const Remise& remise) {
                    if (const auto* refus = std::get_if<Refusee>(&remise))
                      tracer("le Mac a refusé la notification : " + refus->description);
                    else if (std::holds_alternative<Posee>(remise))
                      tracer("notification posée : " + identifiant);
                  }));
}

void PontNotifications::quandOnClique(const std::optional<std::string>& terminal) {
  boucle_.poster(temoin_.garder([this, terminal] {
    if (activer) activer();
    if (terminal) executerDansLaPage(appel("ouvrir", *terminal));
  }));
}

void PontNotifications::ouvrirLesReglagesDeNotification() {
  centre_.ouvrirLesReglages();
}

void PontNotifications::executerDansLaPage(const std::string& ligne) {
  boucle_.poster(temoin_.garder([this, ligne] {
    if (vue) vue(ligne);
  }));
}

void PontNotifications::tracer(const std::string& ligne) const {
  if (trace) trace(ligne);
}

} // namespace keltrove::pont
