#include "fenetre/APropos.hpp"

#include "socle/Reglages.hpp"
#include "socle/Texte.hpp"

#include <fmt/format.h>

namespace keltrove::fenetre::APropos {

namespace Journal = socle::Journal;

namespace {

std::string decrire(Journal::Details etape) {
  const auto retirer = [&etape](const char* cle) { return std::move(etape.extract(cle).mapped()); };
  const auto secondes = std::get<double>(retirer("seconde"));
  const auto nomDeLEtape = std::get<std::string>(retirer("etape"));
  const auto details = Journal::resume(etape);
  return fmt::format("{:9.2f} s  {}{}{}\n", secondes, nomDeLEtape, details.empty() ? "" : "  ", details);
}

void masquer(std::string& texte, const std::string& secret) {
  if (secret.empty()) return;
  const std::string marque = "…";
  for (auto ou = texte.find(secret); ou != std::string::npos; ou = texte.find(secret, ou + marque.size()))
    texte.replace(ou, secret.size(), marque);
}

} // namespace

std::string journal(const std::string& systeme, const std::vector<Journal::Details>& etapes,
                    const std::optional<std::string>& jeton) {
  auto texte = fmt::format("Keltrove {}\n{}\n", KELTROVE_VERSION, systeme);
  for (const auto& etape : etapes)
    texte += decrire(etape);
  masquer(texte, jeton.value_or(""));
  return socle::enUTF8(texte);
}

std::string journal(const std::string& systeme) {
  return journal(systeme, Journal::etapes(), socle::Reglages::jeton());
}

} // namespace keltrove::fenetre::APropos
