#include "socle/Reglages.hpp"

#include "socle/Fichiers.hpp"
#include "socle/JSON.hpp"
#include "socle/Texte.hpp"

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <string_view>
#include <vector>

#include <locale.h>
#include <pwd.h>
#include <unistd.h>
#if __has_include(<xlocale.h>)
#include <xlocale.h>
#endif

namespace keltrove::socle::Reglages {
namespace {

// Bien au-delà d’un jeton ou de réglages écrits par le serveur : plus grand, le fichier n’est pas le nôtre.
constexpr std::size_t tailleMaximale = 1 << 20;

std::string dansLeDossierCache(std::string_view nom) {
  return ajouterComposant(ajouterComposant(maison(), ".zelcor"), nom);
}

bool vautUn(const char* variable) {
  const char* valeur = std::getenv(variable);
  return valeur != nullptr && std::string_view(valeur) == "1";
}

std::string maisonDuCompte() {
  std::vector<char> place(16384);
  passwd compte{};
  passwd* trouve = nullptr;
  if (::getpwuid_r(::getuid(), &compte, place.data(), place.size(), &trouve) != 0 || trouve == nullptr)
    return "/";
  return trouve->pw_dir;
}

// Un nombre s’écrit de la même façon quelle que soit la langue du processus, qui écrirait ici « 2,5 ».
std::optional<double> lireNombre(const char* texte) {
  static const locale_t langueC = ::newlocale(LC_ALL_MASK, "C", nullptr);
  if (*texte == '\0' || std::string_view(" \t\n\v\f\r").contains(*texte)) return std::nullopt;
  char* fin = nullptr;
  const double valeur = ::strtod_l(texte, &fin, langueC);
  if (fin == texte || *fin != '\0') return std::nullopt;
  return valeur;
}

std::optional<int> portDans(const nlohmann::json& reglages) {
  if (!reglages.is_object()) return std::nullopt;
  const auto membre = reglages.find("port");
  if (membre == reglages.end() || !membre->is_number()) return std::nullopt;
  const auto valeur = membre->get<double>();
  if (!(valeur >= 1 && valeur <= 65535) || valeur != std::floor(valeur)) return std::nullopt;
  return static_cast<int>(valeur);
}

} // namespace

std::string maison() {
  const char* valeur = std::getenv("HOME");
  return valeur != nullptr && *valeur != '\0' ? valeur : maisonDuCompte();
}

bool modeEssai() {
  return vautUn("KELTROVE_ESSAI");
}
bool modeDiscret() {
  return vautUn("KELTROVE_DISCRET");
}
bool accessoire() {
  return modeEssai() || modeDiscret();
}

std::string cheminEtatEssai() {
  return dansLeDossierCache("keltrove-app-etat.json");
}
std::string cheminJeton() {
  return dansLeDossierCache("keltrove-jeton");
}
std::string dossierKeltroveInstalle() {
  return dansLeDossierCache("it/keltrove");
}

double secondesAvantAuToQuitter() {
  const char* valeur = modeEssai() ? std::getenv("KELTROVE_ESSAI_QUITTER") : nullptr;
  if (valeur == nullptr) return 0;
  const auto secondes = lireNombre(valeur);
  return secondes && *secondes > 0 ? *secondes : 0;
}

std::optional<std::string> jeton() {
  const auto contenu = lireFichier(cheminJeton(), tailleMaximale);
  if (!contenu || !estUTF8(*contenu)) return std::nullopt;
  const auto valeur = rogner(*contenu);
  if (valeur.empty()) return std::nullopt;
  return std::string(valeur);
}

int portSouhaite() {
  const auto contenu = lireFichier(dansLeDossierCache("keltrove.json"), tailleMaximale);
  const auto json = contenu ? lireJSON(*contenu) : std::nullopt;
  if (!json) return portParDefaut;
  return portDans(*json).value_or(portParDefaut);
}

} // namespace keltrove::socle::Reglages
