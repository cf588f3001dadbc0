// CentreEnregistreur : un centre de notifications sans système. L’essai donne les réponses quand il veut.
#pragma once

#include "pont/CentreNotifications.hpp"

#include <utility>
#include <vector>

namespace keltrove::essais {

class CentreEnregistreur final : public pont::CentreNotifications {
public:
  std::vector<std::function<void(pont::Autorisation)>> lectures;
  std::vector<std::function<void(bool)>> demandes;
  std::vector<std::pair<pont::Notification, std::function<void(const pont::Remise&)>>> notifications;
  std::vector<std::string> drapeaux;
  int reglagesOuverts = 0;
  pont::DelegueDuCentre* delegue = nullptr;

  void lireLesReglages(std::function<void(pont::Autorisation)> fini) override {
    lectures.push_back(std::move(fini));
  }
  void demanderLAutorisation(std::function<void(bool)> fini) override { demandes.push_back(std::move(fini)); }
  void ajouter(const pont::Notification& notification,
               std::function<void(const pont::Remise&)> fini) override {
    notifications.emplace_back(notification, std::move(fini));
  }
  void ouvrirLesReglages() override { ++reglagesOuverts; }
  void deleguerA(pont::DelegueDuCentre* nouveau) override { delegue = nouveau; }
  void retenir(const std::string& drapeau) override { drapeaux.push_back(drapeau); }
};

} // namespace keltrove::essais
