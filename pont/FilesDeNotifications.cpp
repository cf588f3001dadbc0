#include "pont/FilesDeNotifications.hpp"

#include <algorithm>
#include <utility>

namespace keltrove::pont {
namespace {

constexpr std::size_t attentesSansTerminal = 16;
// Tous les services ne disent pas quand ils cessent de montrer.
constexpr std::size_t montreesMaximales = 256;

std::string nomDeLaFile(const Notification& notification) {
  return notification.idTerminal.empty() ? "" : notification.identifiant;
}

} // namespace

void FilesDeNotifications::ajouter(const Notification& notification,
                                   std::function<void(const Remise&)> fini) {
  const auto nom = nomDeLaFile(notification);
  auto& file = files_[nom];
  if (!file.envoiEnCours) return envoyer(nom, {notification, std::move(fini)});
  const std::size_t maximum = nom.empty() ? attentesSansTerminal : 1;
  if (file.attente.size() == maximum) file.attente.pop_front();
  file.attente.push_back({notification, std::move(fini)});
}

void FilesDeNotifications::envoyer(const std::string& nom, Demande demande) {
  files_[nom].envoiEnCours = true;
  const auto notification = demande.notification;
  const auto remplace = numeroDe(notification.identifiant);
  envoyer_(notification, remplace,
           [this, nom, epoque = epoque_, demande = std::move(demande)](const Issue& issue) {
             const bool perime = epoque != epoque_;
             quandLEnvoiFinit(nom, demande, perime ? Issue{issue.remise, 0} : issue);
           });
}

void FilesDeNotifications::quandLEnvoiFinit(const std::string& nom, const Demande& demande,
                                            const Issue& issue) {
  const auto& [identifiant, titre, corps, idTerminal] = demande.notification;
  if (issue.numero != 0) {
    oublier(numeroDe(identifiant));
    montrees_[issue.numero] = {identifiant, idTerminal};
    if (montrees_.size() > montreesMaximales) montrees_.erase(montrees_.begin());
  }
  auto& file = files_[nom];
  if (file.attente.empty()) {
    files_.erase(nom);
  } else {
    auto suivante = std::move(file.attente.front());
    file.attente.pop_front();
    envoyer(nom, std::move(suivante));
  }
  if (demande.fini) demande.fini(issue.remise);
}

void FilesDeNotifications::oublier(Numero numero) {
  montrees_.erase(numero);
}

void FilesDeNotifications::toutOublier() {
  montrees_.clear();
  ++epoque_;
}

std::optional<std::string> FilesDeNotifications::terminalDe(Numero numero) const {
  const auto montree = montrees_.find(numero);
  return montree != montrees_.end() ? std::optional(montree->second.idTerminal) : std::nullopt;
}

FilesDeNotifications::Numero FilesDeNotifications::numeroDe(const std::string& identifiant) const {
  const auto montree = std::ranges::find_if(
      montrees_, [&](const auto& paire) { return paire.second.identifiant == identifiant; });
  return montree != montrees_.end() ? montree->first : 0;
}

} // namespace keltrove::pont
