#include "socle/Journal.hpp"

#include "socle/Fichiers.hpp"
#include "socle/Reglages.hpp"
#include "socle/SortieDErreur.hpp"
#include "socle/Texte.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <mutex>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace keltrove::socle::Journal {
namespace {

using Instant = std::chrono::steady_clock::time_point;

struct Registre {
  std::mutex verrou;
  std::vector<Details> etapes;
  std::optional<Instant> debut;
};

// Jamais détruit : un fil d’arrière-plan peut encore noter une étape pendant la fin du processus.
Registre& registre() {
  static auto* unique = new Registre;
  return *unique;
}

std::string decrire(const Valeur& valeur) {
  if (const auto* texte = std::get_if<std::string>(&valeur)) return *texte;
  if (const auto* entier = std::get_if<std::int64_t>(&valeur)) return fmt::format("{}", *entier);
  if (const auto* vrai = std::get_if<bool>(&valeur)) return *vrai ? "true" : "false";
  auto nombre = fmt::format("{}", std::get<double>(valeur));
  if (nombre.find_first_not_of("-0123456789") == std::string::npos) nombre += ".0";
  return nombre;
}

nlohmann::json enValeurJSON(const Valeur& valeur) {
  return std::visit([](const auto& v) { return nlohmann::json(v); }, valeur);
}

bool representable(const Valeur& valeur) {
  const auto* nombre = std::get_if<double>(&valeur);
  return nombre == nullptr || std::isfinite(*nombre);
}

void imprimer(std::string_view nom, const Details& details) {
  direSurLaSortieDErreur(fmt::format("  [keltrove] {} {}\n", nom, resume(details)));
}

void ecrireLeFichier(const std::vector<Details>& etapes) {
  if (const auto contenu = enJSON(etapes)) ecrireFichier(Reglages::cheminEtatEssai(), *contenu);
}

} // namespace

void etape(std::string_view nom, const Details& details) {
  auto entree = details;
  entree["etape"] = std::string(nom);

  auto& journal = registre();
  std::vector<Details> copie;
  {
    const std::lock_guard garde(journal.verrou);
    const auto maintenant = std::chrono::steady_clock::now();
    if (!journal.debut) journal.debut = maintenant;
    entree["seconde"] = auCentieme(std::chrono::duration<double>(maintenant - *journal.debut).count());
    journal.etapes.push_back(std::move(entree));
    copie = journal.etapes;
  }
  imprimer(nom, details);
  if (Reglages::modeEssai()) ecrireLeFichier(copie);
}

std::vector<Details> etapes() {
  auto& journal = registre();
  const std::lock_guard garde(journal.verrou);
  return journal.etapes;
}

std::string resume(const Details& details) {
  std::vector<std::string> paires;
  for (const auto& [cle, valeur] : details)
    paires.push_back(cle + "=" + decrire(valeur));
  std::ranges::sort(paires);
  return joindre(paires, " ");
}

std::optional<std::string> enJSON(const std::vector<Details>& etapes) {
  auto liste = nlohmann::json::array();
  for (const auto& details : etapes) {
    auto objet = nlohmann::json::object();
    for (const auto& [cle, valeur] : details) {
      if (!representable(valeur)) return std::nullopt;
      objet[cle] = enValeurJSON(valeur);
    }
    liste.push_back(std::move(objet));
  }
  try {
    return nlohmann::json{{"etapes", std::move(liste)}}.dump(2);
  } catch (const nlohmann::json::exception&) {
    return std::nullopt; // un texte qui n’est pas en UTF-8
  }
}

double auCentieme(double secondes) {
  return std::round(secondes * 100) / 100;
}

} // namespace keltrove::socle::Journal
