// DelegueEnEssai : le délégué avec un vrai moteur, de vrais serveurs, une fenêtre sans écran
// et un temps virtuel.
#pragma once

#include "BoucleVirtuelle.hpp"
#include "BureauEnregistreur.hpp"
#include "HorlogeAcceleree.hpp"
#include "MaisonTemporaire.hpp"
#include "ServeurFactice.hpp"
#include "app/DelegueApplication.hpp"
#include "socle/Journal.hpp"

#include <algorithm>
#include <cstdlib>

#include <gtest/gtest.h>
#include <unistd.h>

namespace keltrove::app {

namespace Journal = socle::Journal;

// Un serveur qui répond, dit son message, et obéit ou non à SIGTERM. %PORT% et %SUITE% sont remplacés.
inline constexpr const char* serveur = R"(
import http from 'node:http';
const page = '<meta name="keltrove-jeton" content="x">';
const sante = '{"version":"1.4.2","carnet":{"terminaux":5}}';
http.createServer((q, r) => r.end(q.url === '/api/sante' ? sante : page)).listen(%PORT%, '127.0.0.1');
%SUITE%
)";

inline std::vector<std::string> etapes() {
  std::vector<std::string> noms;
  for (const auto& etape : Journal::etapes())
    noms.push_back(std::get<std::string>(etape.at("etape")));
  return noms;
}

inline bool aEteNotee(const std::string& nom) {
  return std::ranges::count(etapes(), nom) > 0;
}

inline Journal::Details detailsDe(const std::string& nom) {
  for (auto etape : Journal::etapes())
    if (etape.at("etape") == Journal::Valeur(nom)) {
      etape.erase("etape");
      etape.erase("seconde");
      return etape;
    }
  return {};
}

class DelegueEnEssai : public testing::Test {
protected:
  DelegueEnEssai() {
    ::unsetenv("KELTROVE_ESSAI");
    ::unsetenv("KELTROVE_DISCRET");
    ::unsetenv("KELTROVE_ESSAI_QUITTER");
  }
  ~DelegueEnEssai() override {
    // Un serveur d’essai ne survit pas à son essai, même raté.
    if (moteur->nousLavonsAllume()) {
      bool fini = false;
      moteur->arreter([&](const std::string&) { fini = true; });
      boucle->attendre([&] { return fini; });
    }
    // Une santé demandée lit encore le dossier personnel, que la maison d’essai va rendre.
    boucle->attendre([this] { return moteur.use_count() <= usagesAuRepos; });
  }

  void poserLeServeur(const std::string& suite = "") {
    auto code = std::string(serveur);
    code.replace(code.find("%PORT%"), 6, std::to_string(maison.port()));
    code.replace(code.find("%SUITE%"), 7, suite);
    maison.ecrire("ressources/keltrove/serveur.mjs", code);
  }
  bool attendreLEtape(const std::string& nom, int fois = 1) {
    return boucle->attendre([&] { return std::ranges::count(etapes(), nom) >= fois; });
  }

  // Le guet regarde une fois de plus, et le délégué en apprend le résultat.
  void attendreUnRegard() {
    const int avant = boucle->tachesExecutees();
    boucle->avancer(6.0);
    EXPECT_TRUE(boucle->attendre([&] { return boucle->tachesExecutees() > avant; }));
  }

  essais::MaisonTemporaire maison;
  std::shared_ptr<essais::BoucleVirtuelle> boucle = std::make_shared<essais::BoucleVirtuelle>();
  std::shared_ptr<moteur::MoteurServeur> moteur = std::make_shared<moteur::MoteurServeur>(
      moteur::MoteurServeur::Contexte{.boucle = boucle,
                                      .horloge = std::make_shared<essais::HorlogeAcceleree>(),
                                      .emplacements = moteur::Emplacements(maison.chemin("ressources")),
                                      .environnement = socle::Environnement::duProcessus()});
  essais::BureauEnregistreur bureau;
  essais::VueEnregistreuse& vue = bureau.vue;
  essais::CentreEnregistreur& centre = bureau.centre;
  DelegueApplication delegue{moteur, boucle, bureau};
  const long usagesAuRepos = moteur.use_count();
};

} // namespace keltrove::app
