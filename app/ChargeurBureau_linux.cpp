#include "app/ChargeurBureau.hpp"
#include "socle/Fichiers.hpp"

#include <dlfcn.h>

namespace keltrove::app {

namespace {

using socle::ajouterComposant;

constexpr const char* nomDuModule = "libkeltrove-bureau.so";
constexpr const char* nomDeLEntree = "keltroveLancerLeBureau";

} // namespace

std::expected<LancerLeBureau, std::string> chargerLeBureau(const std::string& executable) {
  const auto dossier = socle::dossierDe(executable);
  for (const auto* sousDossier : {"", "../lib/keltrove"}) {
    const auto chemin = ajouterComposant(ajouterComposant(dossier, sousDossier), nomDuModule);
    if (!socle::existe(chemin)) continue;
    void* module = ::dlopen(chemin.c_str(), RTLD_LAZY | RTLD_LOCAL);
    void* entree = module != nullptr ? ::dlsym(module, nomDeLEntree) : nullptr;
    if (entree == nullptr) {
      const char* raison = ::dlerror();
      return std::unexpected(
          "Keltrove ne peut pas ouvrir sa fenêtre : une bibliothèque du bureau manque ou ne convient pas (" +
          std::string(raison != nullptr ? raison : chemin) + "). Réinstallez l’application.");
    }
    return reinterpret_cast<LancerLeBureau>(entree);
  }
  return std::unexpected("Keltrove ne peut pas ouvrir sa fenêtre : le fichier " + std::string(nomDuModule) +
                         " manque à côté de l’application. Réinstallez-la.");
}

} // namespace keltrove::app
