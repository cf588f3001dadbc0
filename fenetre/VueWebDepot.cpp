#include "fenetre/VueWebDepot.hpp"

#include <algorithm>
#include <utility>

#include <nlohmann/json.hpp>

namespace keltrove::fenetre {
namespace {

constexpr double echelleMinimale = 0.01;

constexpr const char* survol = "if (window.keltroveSurvolChemins) window.keltroveSurvolChemins(x, y);";
constexpr const char* finDuSurvol =
    "if (window.keltroveSurvolChemins) window.keltroveSurvolChemins(null, null);";
constexpr const char* depot =
    "if (window.keltroveDeposerChemins) window.keltroveDeposerChemins(chemins, x, y);";

} // namespace

Point pointDansLaPage(const Point& point, const MesuresDeLaVue& vue) {
  const double y = vue.origineEnHaut ? point.y : vue.hauteur - point.y;
  const double echelle = std::max(vue.zoom * vue.agrandissement, echelleMinimale);
  return {.x = point.x / echelle, .y = y / echelle};
}

VueWebDepot::VueWebDepot(AppelDeLaPage appelerLaPage) : appelerLaPage_(std::move(appelerLaPage)) {}

VueWebDepot::Reponse VueWebDepot::draggingEntered(const Glissement& glissement) {
  glisserDeFichiers_ = !glissement.chemins.empty();
  return draggingUpdated(glissement);
}

VueWebDepot::Reponse VueWebDepot::draggingUpdated(const Glissement& glissement) {
  if (!glisserDeFichiers_) return Reponse::commeLaVueWeb;
  survoler(glissement);
  return Reponse::copie;
}

VueWebDepot::Reponse VueWebDepot::draggingExited() {
  if (!glisserDeFichiers_) return Reponse::commeLaVueWeb;
  finirLeSurvol();
  return Reponse::copie;
}

void VueWebDepot::draggingEnded() {
  if (glisserDeFichiers_) finirLeSurvol();
}

VueWebDepot::Reponse VueWebDepot::prepareForDragOperation() const {
  return glisserDeFichiers_ ? Reponse::copie : Reponse::commeLaVueWeb;
}

std::optional<bool> VueWebDepot::performDragOperation(const Glissement& glissement) {
  if (!glisserDeFichiers_) return std::nullopt;
  const auto [x, y] = pointDansLaPage(glissement.point, glissement.vue);
  appelerLaPage_(depot, {{"chemins", glissement.chemins}, {"x", x}, {"y", y}});
  return !glissement.chemins.empty();
}

VueWebDepot::Reponse VueWebDepot::concludeDragOperation() {
  // La page a reçu le dépôt : elle efface elle-même son survol.
  return std::exchange(glisserDeFichiers_, false) ? Reponse::copie : Reponse::commeLaVueWeb;
}

void VueWebDepot::survoler(const Glissement& glissement) {
  const auto [x, y] = pointDansLaPage(glissement.point, glissement.vue);
  appelerLaPage_(survol, {{"x", x}, {"y", y}});
}

void VueWebDepot::finirLeSurvol() {
  glisserDeFichiers_ = false;
  appelerLaPage_(finDuSurvol, nlohmann::json::object());
}

} // namespace keltrove::fenetre
