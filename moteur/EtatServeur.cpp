#include "moteur/EtatServeur.hpp"

namespace keltrove::moteur::EtatServeur {

std::optional<int> port(const Valeur& etat) {
  if (const auto* rattache = std::get_if<Rattache>(&etat)) return rattache->port;
  if (const auto* arret = std::get_if<EnArret>(&etat)) return arret->port;
  const auto serveur = dernierLance(etat);
  return serveur ? serveur->port : std::nullopt;
}

bool estLeNotre(const Valeur& etat) {
  return !std::holds_alternative<Rien>(etat) && !std::holds_alternative<Rattache>(etat);
}

std::optional<ServeurLance> dernierLance(const Valeur& etat) {
  if (const auto* lance = std::get_if<Lance>(&etat)) return lance->serveur;
  if (const auto* allume = std::get_if<Allume>(&etat)) return allume->serveur;
  if (const auto* rattache = std::get_if<Rattache>(&etat)) return rattache->avant;
  return std::nullopt;
}

} // namespace keltrove::moteur::EtatServeur
