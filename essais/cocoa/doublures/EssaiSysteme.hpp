// EssaiSysteme : ce que l’application demande au reste du système, noté. Fil principal seulement.
#pragma once

#include <string>
#include <vector>

namespace essais {

struct SystemeNote {
  std::vector<std::string> adressesOuvertes;
  bool rienNOuvre = false;           // aucune application ne sait ouvrir d’adresse
  std::vector<std::string> annonces; // lues au lecteur d’écran
  int rouvertures = 0;               // de cette application, par elle-même
  std::vector<std::string> aPropos;  // ce que le panneau « À propos » porte de plus, chaque fois
  int activations = 0;
  int pleinsEcrans = 0;
  int finsSubitesInterdites = 0;
};
SystemeNote& systemeNote();

} // namespace essais
