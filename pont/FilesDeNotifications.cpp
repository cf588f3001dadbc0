#include "pont/FilesDeNotifications.hpp"

#include <algorithm>
#include <utility>

namespace keltrove::pont {
namespace {

constexpr std::size_t attentesSansTerminal = 16;
// Tous les services ne disent pas quand ils cessent de montrer.
constexpr std::size_t montreesMaximales = 256;

} // namespace

void FilesDeNotifications::ajouter(const Notification& notification, bool applicationDevant,
                                   std::function<void(const Remise&)> fini) {
  if (delegue_ == nullptr && applicationDevant) return fini(Posee{});
  auto& file = files_[notification.terminal];
  if (!file.envoiEnCours) return envoyer({notification, std::move(fini)});
  const std::size_t maximum = notification.terminal ? 1 : attentesSansTerminal;
  if (file.attente.size() == maximum) file.attente.pop_front();
  file.attente.push_back({notification, std::move(fini)});
}

void FilesDeNotifications::envoyer(Demande demande) {
  const auto notification = demande.notification;
  files_[notification.terminal].envoiEnCours = true;
  const auto remplace = numeroDe(notification.identifiant);
  envoyer_(notification, remplace,
           [this, epoque = epoque_, demande = std::move(demande)](const Issue& issue) {
             const bool perime = epoque != epoque_;
             quandLEnvoiFinit(demande, perime ? Issue{issue.remise, 0} : issue);
           });
}

void FilesDeNotifications::quandLEnvoiFinit(const Demande& demande, const Issue& issue) {
  if (issue.numero != 0) {
    oublier(numeroDe(demande.notification.identifiant));
    montrees_[issue.numero] = demande.notification;
    if (montrees_.size() > montreesMaximales) montrees_.erase(montrees_.begin());
  }
  auto& file = files_[demande.notification.terminal];
  if (file.attente.empty()) {
    files_.erase(demande.notification.terminal);
  } else {
    auto suivante = std::move(file.attente.front());
    file.attente.pop_front();
    envoyer(std::move(suivante));
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

bool FilesDeNotifications::meneQuelquePart(Numero numero) const {
  return delegue_ != nullptr && montrees_.contains(numero);
}

void FilesDeNotifications::cliquer(Numero numero) const {
  if (meneQuelquePart(numero)) delegue_->quandOnClique(montrees_.at(numero).terminal);
}

FilesDeNotifications::Numero FilesDeNotifications::numeroDe(const std::string& identifiant) const {
  const auto montree = std::ranges::find_if(
      montrees_, [&](const auto& paire) { return paire.second.identifiant == identifiant; });
  return montree != montrees_.end() ? montree->first : 0;
}

} // namespace keltrove::pont
