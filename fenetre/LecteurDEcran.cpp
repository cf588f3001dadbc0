#include "fenetre/LecteurDEcran.hpp"

#include "pont/TexteCourt.hpp"

#include <fmt/format.h>

namespace keltrove::fenetre {
namespace {

// Une page de terminal, largement.
constexpr std::size_t texteMaximal = 4000;

} // namespace

std::string annonceALaPage(const LecteurDEcran& lecteur) {
  return fmt::format("window.keltroveLecteur = {{ tourne: {}, voitLaPage: {} }}; "
                     "window.dispatchEvent(new Event('lecteur'));",
                     lecteur.tourne, lecteur.voitLaPage);
}

std::optional<std::string> texteALire(const pont::MessageDeLaPage& message) {
  const auto* ecrit = std::get_if<std::string>(&message);
  if (ecrit == nullptr) return std::nullopt;
  const auto texte = pont::texteCourt(*ecrit, "", texteMaximal);
  return texte.empty() ? std::nullopt : std::optional(texte);
}

} // namespace keltrove::fenetre
