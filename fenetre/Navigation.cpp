#include "fenetre/Navigation.hpp"

#include <algorithm>
#include <array>
#include <utility>

namespace keltrove::fenetre {
namespace {

constexpr std::string_view protocole = "http://";

// L’hôte et le port, tels qu’écrits ; rien d’une adresse qui n’est pas en HTTP, ou qui porte un
// nom d’utilisateur.
std::string_view autoriteDe(std::string_view adresse) {
  if (!adresse.starts_with(protocole)) return {};
  adresse.remove_prefix(protocole.size());
  const auto autorite = adresse.substr(0, adresse.find_first_of("/?#"));
  return autorite.contains('@') ? std::string_view() : autorite;
}

// Sous leur forme canonique, les adresses taisent le port d’usage.
std::string_view portDe(std::string_view autorite) {
  const auto finDeLHote = autorite.rfind(':');
  const bool dansLHote = autorite.ends_with(']');
  return finDeLHote == std::string_view::npos || dansLHote ? "80" : autorite.substr(finDeLHote + 1);
}

bool estCetteMachine(std::string_view autorite) {
  return std::ranges::any_of(std::array{"localhost", "127.0.0.1", "[::1]"}, [&](std::string_view hote) {
    return autorite == hote || (autorite.starts_with(hote) && autorite[hote.size()] == ':');
  });
}

// Le serveur de la page est le même sous tous les noms de cette machine.
bool estDe(std::string_view adresse, std::string_view origine) {
  const auto [ici, la] = std::pair(autoriteDe(origine), autoriteDe(adresse));
  return estCetteMachine(ici) && estCetteMachine(la) && portDe(ici) == portDe(la);
}

bool commenceParUnDe(std::string_view adresse, auto debuts) {
  return std::ranges::any_of(debuts, [&](std::string_view debut) { return adresse.starts_with(debut); });
}

} // namespace

Destination destinationDUneFenetreNeuve(std::string_view adresse) {
  const bool sOuvre = commenceParUnDe(adresse, std::array{"http://", "https://", "mailto:"});
  return sOuvre ? Destination::navigateur : Destination::nullePart;
}

bool LiensSortants::laisserPartir(Geste geste) {
  if (geste == Geste::aucun || departs_.size() >= maximum) return false;
  departs_.push_back(boucle_.apres(periode, [this] { departs_.pop_front(); }));
  return true;
}

Destination destinationDe(std::string_view adresse, std::string_view origine) {
  if (estDe(adresse, origine) || commenceParUnDe(adresse, std::array{"about:blank", "about:srcdoc"}))
    return Destination::cetteFenetre;
  return destinationDUneFenetreNeuve(adresse);
}

} // namespace keltrove::fenetre
