#include "moteur/LignesServeur.hpp"

#include "socle/Texte.hpp"

#include <ranges>

namespace keltrove::moteur {
namespace {

// Les derniers morceaux seulement, du plus récent au plus ancien : un bloc fait de fins de ligne en
// compterait des dizaines de milliers.
std::vector<std::string_view> derniersMorceaux(std::string_view bloc, std::size_t maximum) {
  std::vector<std::string_view> morceaux;
  while (morceaux.size() < maximum) {
    const auto coupe = bloc.rfind('\n');
    if (coupe == std::string_view::npos) {
      morceaux.push_back(bloc);
      break;
    }
    morceaux.push_back(bloc.substr(coupe + 1));
    bloc = bloc.substr(0, coupe);
  }
  return morceaux;
}

} // namespace

void LignesServeur::noter(std::string_view bloc) {
  if (!socle::estUTF8(bloc)) return;
  const auto morceaux = derniersMorceaux(bloc, maximum);
  const std::lock_guard garde(verrou_);
  for (const auto morceau : morceaux | std::views::reverse)
    lignes_.emplace_back(morceau);
  while (lignes_.size() > maximum)
    lignes_.pop_front();
}

void LignesServeur::vider() {
  const std::lock_guard garde(verrou_);
  lignes_.clear();
}

std::vector<std::string> LignesServeur::lignes() const {
  const std::lock_guard garde(verrou_);
  return {lignes_.begin(), lignes_.end()};
}

std::string LignesServeur::texte() const {
  return std::string(socle::rogner(socle::joindre(lignes(), "\n")));
}

std::optional<std::string> LignesServeur::messageDeMiseAJour() const {
  constexpr std::string_view marque = "MESSAGE=";
  const std::lock_guard garde(verrou_);
  for (const auto& ligne : lignes_ | std::views::reverse) {
    if (!ligne.starts_with(marque)) continue;
    const auto message = socle::rognerEspaces(std::string_view(ligne).substr(marque.size()));
    if (message.empty()) return std::nullopt;
    return std::string(message);
  }
  return std::nullopt;
}

} // namespace keltrove::moteur
