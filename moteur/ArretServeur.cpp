#include "moteur/ArretServeur.hpp"

#include <algorithm>
#include <csignal>
#include <utility>

#include <fmt/format.h>
#include <unistd.h>

namespace keltrove::moteur {
namespace {

constexpr double delaiDeFermeture = 12.0;
constexpr double entreDeuxRegards = 0.05;
// Script de démarrage, interprète, serveur : au-delà, ce n’est plus le serveur mais ce qu’il fait tourner.
constexpr int profondeurDeRecherche = 3;

bool ecoute(pid_t pid, int port) {
  const auto ports = portsEcoutesPar(pid);
  return std::ranges::find(ports, port) != ports.end();
}

std::optional<pid_t> trouverLeServeur(pid_t lanceur, const std::vector<pid_t>& enfants,
                                      std::optional<int> port) {
  if (!port) return std::nullopt;
  if (ecoute(lanceur, *port)) return lanceur;
  const auto trouve = std::ranges::find_if(enfants, [&](pid_t pid) { return ecoute(pid, *port); });
  return trouve == enfants.end() ? std::nullopt : std::optional(*trouve);
}

} // namespace

ArretServeur::ArretServeur(const std::vector<ServeurLance>& serveurs, std::shared_ptr<socle::Horloge> horloge)
    : horloge_(std::move(horloge)), debut_(horloge_->maintenant()) {
  for (const auto& serveur : serveurs)
    serveur_ = signaler(serveur);
}

std::optional<Identite> ArretServeur::signaler(const ServeurLance& serveur) {
  const pid_t lanceur = serveur.processus->pid();
  auto enfants = descendants(lanceur, profondeurDeRecherche);
  const auto trouve = trouverLeServeur(lanceur, enfants, serveur.port);
  const auto identite = trouve ? std::optional(identifier(*trouve)) : std::nullopt;
  if (trouve)
    enfants.assign(*trouve == lanceur ? 0 : 1, *trouve);
  else
    std::erase_if(enfants, [&](pid_t pid) { return ::getpgid(pid) != lanceur; });
  for (const pid_t pid : enfants) {
    descendants_.push_back(identifier(pid));
    ::kill(pid, SIGTERM);
  }
  serveur.processus->terminer();
  lances_.push_back(serveur.processus);
  return identite;
}

bool ArretServeur::unTourneEncore() const {
  return std::ranges::any_of(lances_, [](const auto& lance) { return lance->tourne(); }) ||
         std::ranges::any_of(descendants_, enVie);
}

std::string ArretServeur::attendre() const {
  const double limite = horloge_->maintenant() + delaiDeFermeture;
  while (horloge_->maintenant() < limite && unTourneEncore())
    horloge_->dormir(entreDeuxRegards);
  const double ecoule = horloge_->maintenant() - debut_;
  if (!serveur_) return "Le serveur n’a pas été retrouvé : rien à fermer.";
  if (enVie(*serveur_)) return tropLong;
  return fmt::format("Serveur fermé proprement en {:.1f} seconde(s).", ecoule);
}

} // namespace keltrove::moteur
