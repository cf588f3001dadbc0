// La table de parité : parite.py la lit, et mène ce scénario une ligne après l’autre. Une ligne est un geste,
// et son objet après une tabulation ; « voir » rend en JSON, sur la sortie, ce qui se voit.

#include "Scenario.hpp"
#include "essais/parite/Entendu.hpp"
#include "fenetre/SondeContenu.hpp"

#include <iostream>
#include <map>

using namespace essais;

namespace {

// Ce que l’application dit à une page qui n’est pas encore là se perd.
std::size_t evaluationsPerdues = 0;

void laPageVient(const std::string&) {
  const auto demandees = lire([] { return page().requetes.size(); });
  afficherLaPage(demandees);
  evaluationsPerdues = lire([] { return page().evaluations.size(); });
}

// La page répond à la sonde, chaque fois qu’on la lui pose.
void repondreAuxSondes() {
  static std::size_t vues = 0;
  for (; vues < page().evaluations.size(); ++vues)
    if (page().evaluations[vues].expression == keltrove::fenetre::expressionDeSonde)
      page().evaluations[vues].repondre(@"Essai|8|jeton-rempli", nil);
}

std::string etatDeLEcran() {
  if (ecran().isHidden) return "page";
  auto dit = titre();
  for (NSButton* bouton in @[ ecran().boutonReessayer, ecran().boutonDetail ])
    if (!bouton.isHidden) dit += " | " + texte(bouton.title);
  return dit;
}

std::string etatDeLaFenetre() {
  if (!fenetre().isVisible) return "cachée";
  return fenetre().isKeyWindow ? "devant" : "derrière";
}

nlohmann::json ceQuiSeVoit() {
  repondreAuxSondes();
  auto dits = nlohmann::json::array();
  for (std::size_t i = evaluationsPerdues; i < page().evaluations.size(); ++i)
    if (const auto dit = keltrove::essais::entendu(page().evaluations[i].expression)) dits.push_back(*dit);
  return {{"écran", etatDeLEcran()},
          {"phrase", texte(ecran().phrase.stringValue)},
          {"fenêtre", etatDeLaFenetre()},
          {"page", dits}};
}

const std::map<std::string, void (*)(const std::string& objet)> gestes{
    {"réessayer", [](const std::string&) { faire([] { [ecran().boutonReessayer performClick:nil]; }); }},
    {"quitter", [](const std::string&) { quitter(); }},
    {"fermer la fenêtre", [](const std::string&) { demander([] { presser(@"w", NSCommandKeyMask); }); }},
    {"finir la session", [](const std::string&) { demander([] { [NSApp terminate:nil]; }); }},
    {"la page vient", laPageVient},
};

} // namespace

SCENARIO(parite) {
  for (std::string ligne; std::getline(std::cin, ligne);) {
    if (ligne == "voir") {
      std::cout << lire(ceQuiSeVoit) << std::endl;
      continue;
    }
    const auto fin = ligne.find('\t');
    gestes.at(ligne.substr(0, fin))(ligne.substr(fin + 1));
    std::cout << "fait" << std::endl;
  }
}
