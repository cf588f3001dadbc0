// Le délégué avec un vrai moteur, de vrais serveurs, une fenêtre sans écran et un temps virtuel.

#include "BoucleVirtuelle.hpp"
#include "CentreEnregistreur.hpp"
#include "HorlogeAcceleree.hpp"
#include "MaisonTemporaire.hpp"
#include "ServeurFactice.hpp"
#include "VueEnregistreuse.hpp"
#include "app/DelegueApplication.hpp"
#include "socle/Journal.hpp"

#include <algorithm>
#include <cstdlib>

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace keltrove::app {
namespace {

namespace Journal = socle::Journal;

// Un serveur qui répond, dit son message, et obéit ou non à SIGTERM. %PORT% et %SUITE% sont remplacés.
constexpr const char* serveur = R"(
import http from 'node:http';
const page = '<meta name="keltrove-jeton" content="x">';
const sante = '{"version":"1.4.2","carnet":{"terminaux":5}}';
http.createServer((q, r) => r.end(q.url === '/api/sante' ? sante : page)).listen(%PORT%, '127.0.0.1');
%SUITE%
)";

std::vector<std::string> etapes() {
  std::vector<std::string> noms;
  for (const auto& etape : Journal::etapes())
    noms.push_back(std::get<std::string>(etape.at("etape")));
  return noms;
}

bool aEteNotee(const std::string& nom) {
  return std::ranges::count(etapes(), nom) > 0;
}

Journal::Details detailsDe(const std::string& nom) {
  for (auto etape : Journal::etapes())
    if (etape.at("etape") == Journal::Valeur(nom)) {
      etape.erase("etape");
      etape.erase("seconde");
      return etape;
    }
  return {};
}

class EssaiDelegue : public testing::Test {
protected:
  EssaiDelegue() {
    ::unsetenv("KELTROVE_ESSAI");
    ::unsetenv("KELTROVE_ESSAI_QUITTER");
    delegue.quandOnPeutPartir = [this] { ++departs; };
  }
  ~EssaiDelegue() override {
    // Un serveur d’essai ne survit pas à son essai, même raté.
    if (moteur->nousLavonsAllume()) {
      bool fini = false;
      moteur->arreter([&](const std::string&) { fini = true; });
      boucle->attendre([&] { return fini; });
    }
  }

  void poserLeServeur(const std::string& suite = "") {
    auto code = std::string(serveur);
    code.replace(code.find("%PORT%"), 6, std::to_string(maison.port()));
    code.replace(code.find("%SUITE%"), 7, suite);
    maison.ecrire("ressources/keltrove/serveur.mjs", code);
  }
  bool attendreLEtape(const std::string& nom) {
    return boucle->attendre([&] { return aEteNotee(nom); });
  }

  essais::MaisonTemporaire maison;
  std::shared_ptr<essais::BoucleVirtuelle> boucle = std::make_shared<essais::BoucleVirtuelle>();
  std::shared_ptr<moteur::MoteurServeur> moteur = std::make_shared<moteur::MoteurServeur>(
      moteur::MoteurServeur::Contexte{.boucle = boucle,
                                      .horloge = std::make_shared<essais::HorlogeAcceleree>(),
                                      .emplacements = moteur::Emplacements(maison.chemin("ressources")),
                                      .environnement = socle::Environnement(::environ)});
  essais::VueEnregistreuse vue;
  essais::CentreEnregistreur centre;
  DelegueApplication delegue{moteur, boucle};
  int departs = 0;
};

TEST_F(EssaiDelegue, LePremierEcranPrecedeLaFenetreEtLeDemarrage) {
  delegue.applicationDidFinishLaunching(vue, centre);
  ASSERT_EQ(vue.ecrans.size(), 2U);
  EXPECT_EQ(vue.ecrans[0].titre, "keltrove démarre…");
  EXPECT_EQ(vue.ecrans[0].phrase, "Je regarde si le serveur tourne déjà.");
  EXPECT_EQ(vue.ecrans[1].titre, "keltrove démarre…");
  EXPECT_EQ(vue.ecrans[1].phrase,
            "Je regarde si le serveur tourne déjà. S’il dort, je l’allume et j’attends qu’il réponde.");
  EXPECT_EQ(vue.devant, 1);
  EXPECT_EQ(etapes(), std::vector<std::string>{"demarrage-demande"});
  EXPECT_TRUE(attendreLEtape("echec-demarrage"));
}

TEST_F(EssaiDelegue, UnServeurAllumeOuvreLaPageEtNoteSaSante) {
  poserLeServeur();
  maison.ecrire(".zelcor/keltrove-jeton", "abc\n");
  delegue.applicationDidFinishLaunching(vue, centre);
  ASSERT_TRUE(attendreLEtape("allume"));
  EXPECT_EQ(detailsDe("allume"), (Journal::Details{{"port", std::int64_t{maison.port()}}}));
  EXPECT_EQ(vue.ecran().titre, "Le serveur répond");
  EXPECT_EQ(vue.ecran().phrase, fmt::format("J’ouvre la page (port {}).", maison.port()));
  EXPECT_EQ(vue.adresses, std::vector{fmt::format("http://localhost:{}/", maison.port())});
  ASSERT_TRUE(attendreLEtape("sante"));
  EXPECT_EQ(detailsDe("sante"),
            (Journal::Details{{"version", std::string("1.4.2")}, {"carnet", std::int64_t{5}}}));
}

TEST_F(EssaiDelegue, UnServeurQuiTourneDejaNEstPasRelanceEtResteApresNous) {
  poserLeServeur();
  const auto autre = std::make_shared<moteur::MoteurServeur>(
      moteur::MoteurServeur::Contexte{.boucle = boucle,
                                      .horloge = std::make_shared<essais::HorlogeAcceleree>(),
                                      .emplacements = moteur::Emplacements(maison.chemin("ressources")),
                                      .environnement = socle::Environnement(::environ)});
  bool allume = false;
  autre->demarrer([&](const moteur::Demarrage& issue) { allume = issue.has_value(); });
  ASSERT_TRUE(boucle->attendre([&] { return allume; }));

  delegue.applicationDidFinishLaunching(vue, centre);
  ASSERT_TRUE(attendreLEtape("rattache"));
  EXPECT_EQ(etapes(), (std::vector<std::string>{"demarrage-demande", "rattache"}));
  EXPECT_EQ(vue.ecran().titre, "keltrove est déjà en route");
  EXPECT_EQ(vue.ecran().phrase,
            fmt::format("Je me branche sur le serveur qui tourne (port {}) : rien n’a été relancé.",
                        maison.port()));

  const auto dessins = vue.ecrans.size();
  EXPECT_EQ(delegue.applicationShouldTerminate(), ReponseFermeture::maintenant);
  EXPECT_EQ(etapes().back(), "quitte-sans-toucher-au-serveur");
  EXPECT_EQ(vue.ecrans.size(), dessins) << "aucun écran de fermeture";
  EXPECT_TRUE(moteur->cEstBienKeltrove(maison.port()));

  bool arrete = false;
  autre->arreter([&](const std::string&) { arrete = true; });
  EXPECT_TRUE(boucle->attendre([&] { return arrete; }));
}

TEST_F(EssaiDelegue, UnEchecSeNoteAvecSonTitreEtUnNouvelEssaiLeDit) {
  delegue.applicationDidFinishLaunching(vue, centre);
  ASSERT_TRUE(attendreLEtape("echec-demarrage"));
  EXPECT_EQ(detailsDe("echec-demarrage"),
            (Journal::Details{{"cause", std::string("Le code de keltrove est introuvable")}}));
  EXPECT_TRUE(vue.ecran().boutonReessayer);
  boucle->avancer(60);
  EXPECT_EQ(std::ranges::count(etapes(), "demarrage-demande"), 1) << "aucun essai de soi-même";

  poserLeServeur();
  vue.quandOnReessaie();
  EXPECT_EQ(vue.ecran().titre, "Nouvel essai…");
  EXPECT_TRUE(attendreLEtape("allume"));
}

TEST_F(EssaiDelegue, ReessayerPendantUnDemarrageNeFaitRien) {
  poserLeServeur();
  delegue.applicationDidFinishLaunching(vue, centre);
  const auto dessins = vue.ecrans.size();
  vue.quandOnReessaie();
  vue.quandOnReessaie();
  EXPECT_EQ(vue.ecrans.size(), dessins);
  ASSERT_TRUE(attendreLEtape("allume"));
  EXPECT_EQ(std::ranges::count(etapes(), "demarrage-demande"), 1);
}

TEST_F(EssaiDelegue, LeMotDeMiseAJourSeMontreUneFoisDansLeBandeau) {
  poserLeServeur("console.log('MESSAGE= Version 2 prête\\t');");
  delegue.applicationDidFinishLaunching(vue, centre);
  ASSERT_TRUE(attendreLEtape("allume"));
  ASSERT_TRUE(boucle->attendre([&] { return moteur->messageDeMiseAJour().has_value(); }));
  boucle->avancer(3.0);
  EXPECT_EQ(std::ranges::count(etapes(), "bandeau"), 1);
  EXPECT_EQ(detailsDe("bandeau"), (Journal::Details{{"texte", std::string("Version 2 prête")}}));
  boucle->avancer(4.0);
  EXPECT_FALSE(vue.bandeaux.back().visible);
}

// Un serveur qui annonce sa mise à jour quand on le lui demande, par un fichier posé dans son dossier.
constexpr const char* annonceSurDemande = "import fs from 'node:fs'; fs.watch('.', (_, nom) => { if (nom === "
                                          "'dire') console.log('MESSAGE=tard'); });";

TEST_F(EssaiDelegue, UnMotVenuAvantTroisSecondesSeMontre) {
  poserLeServeur(annonceSurDemande);
  delegue.applicationDidFinishLaunching(vue, centre);
  ASSERT_TRUE(attendreLEtape("allume"));
  boucle->avancer(2.99);
  maison.ecrire("ressources/keltrove/dire", "");
  ASSERT_TRUE(boucle->attendre([&] { return moteur->messageDeMiseAJour().has_value(); }));
  EXPECT_FALSE(aEteNotee("bandeau"));
  boucle->avancer(0.01);
  EXPECT_TRUE(aEteNotee("bandeau"));
}

TEST_F(EssaiDelegue, UnMotVenuApresTroisSecondesNeSeMontreJamais) {
  poserLeServeur(annonceSurDemande);
  delegue.applicationDidFinishLaunching(vue, centre);
  ASSERT_TRUE(attendreLEtape("allume"));
  boucle->avancer(3.5);
  maison.ecrire("ressources/keltrove/dire", "");
  ASSERT_TRUE(boucle->attendre([&] { return moteur->messageDeMiseAJour().has_value(); }));
  boucle->avancer(60);
  EXPECT_FALSE(aEteNotee("bandeau"));
}

TEST_F(EssaiDelegue, LaMortDuServeurEnServiceSeMontreAussitotEtLaSurveillanceSArrete) {
  poserLeServeur(
      "import fs from 'node:fs'; fs.watch('.', () => { console.log('au revoir'); process.exit(3); });");
  delegue.applicationDidFinishLaunching(vue, centre);
  ASSERT_TRUE(attendreLEtape("allume"));
  maison.ecrire("ressources/keltrove/fin", "");
  ASSERT_TRUE(attendreLEtape("serveur-mort-en-route"));
  EXPECT_EQ(detailsDe("serveur-mort-en-route"), Journal::Details{});
  EXPECT_EQ(vue.ecran().titre, "Le serveur s’est arrêté");
  EXPECT_EQ(vue.ecran().detail, "au revoir");
  boucle->avancer(120);
  EXPECT_FALSE(aEteNotee("serveur-ne-repond-plus"));
  EXPECT_EQ(std::ranges::count(etapes(), "demarrage-demande"), 1);
}

TEST_F(EssaiDelegue, TroisVerificationsRateesMontrentLeProblemeParDessusLaPage) {
  poserLeServeur("console.log('dernière ligne'); setTimeout(() => {}, 1e9);"
                 "import fs from 'node:fs'; fs.watch('.', () => process.kill(process.pid, 'SIGSTOP'));");
  delegue.applicationDidFinishLaunching(vue, centre);
  ASSERT_TRUE(attendreLEtape("allume"));
  vue.quandNavigationFinie();
  maison.ecrire("ressources/keltrove/geler", "");
  for (int regards = 0; regards < 10 && !aEteNotee("serveur-ne-repond-plus"); ++regards) {
    const int avant = boucle->tachesExecutees();
    boucle->avancer(6.0);
    ASSERT_TRUE(boucle->attendre([&] { return boucle->tachesExecutees() > avant; }));
  }
  ASSERT_TRUE(attendreLEtape("serveur-ne-repond-plus"));
  EXPECT_EQ(
      vue.ecran(),
      (fenetre::EtatEcran{
          .titre = "Le serveur de keltrove ne répond plus",
          .phrase = "La page est toujours affichée, mais plus rien ne lui parle : le serveur s’est arrêté ou "
                    "a été coupé. Les terminaux qui étaient ouverts sont fermés ; leur liste, elle, a été "
                    "notée et reviendra.",
          .conseil = "Cliquez sur « Réessayer » : je le rallume et je rouvre la page.",
          .boutonReessayer = true,
          .boutonDetail = true,
          .detail = "dernière ligne"}));
}

TEST_F(EssaiDelegue, FermerNotreServeurLeDitAttendSaFinPuisPart) {
  poserLeServeur();
  delegue.applicationDidFinishLaunching(vue, centre);
  ASSERT_TRUE(attendreLEtape("allume"));
  EXPECT_EQ(delegue.applicationShouldTerminate(), ReponseFermeture::plusTard);
  EXPECT_EQ(vue.ecran().titre, "Fermeture…");
  EXPECT_EQ(vue.ecran().phrase, "Je laisse le serveur noter la liste des terminaux avant de partir.");
  EXPECT_TRUE(vue.ecran().roue);
  vue.quandNavigationRatee({.description = "la page s’est arrêtée"});
  vue.quandNavigationFinie();
  EXPECT_EQ(vue.ecran().titre, "Fermeture…");
  EXPECT_TRUE(vue.ecran().visible);
  EXPECT_FALSE(aEteNotee("page-ratee") || aEteNotee("page-affichee"));
  EXPECT_EQ(departs, 0);
  ASSERT_TRUE(boucle->attendre([&] { return departs == 1; }));
  const auto message = std::get<std::string>(detailsDe("arret-fini").at("message"));
  EXPECT_TRUE(message.starts_with("Serveur fermé proprement en ")) << message;
  EXPECT_FALSE(aEteNotee("serveur-mort-en-route"));
  EXPECT_FALSE(moteur->cEstBienKeltrove(maison.port()));
}

TEST_F(EssaiDelegue, QuitterDeuxFoisNeDemandeQuUnArretEtNeRelanceRien) {
  poserLeServeur();
  delegue.applicationDidFinishLaunching(vue, centre);
  ASSERT_TRUE(attendreLEtape("allume"));
  delegue.applicationShouldTerminate();
  EXPECT_EQ(delegue.applicationShouldTerminate(), ReponseFermeture::plusTard);
  vue.quandOnReessaie();
  ASSERT_TRUE(boucle->attendre([&] { return departs == 1; }));
  EXPECT_EQ(etapes(),
            (std::vector<std::string>{"demarrage-demande", "allume", "arret-demande", "arret-fini"}));
}

TEST_F(EssaiDelegue, QuitterPendantUnDemarrageArreteLeServeurLanceEtGardeLEcranDeFermeture) {
  maison.ecrire("ressources/keltrove/serveur.mjs",
                "import fs from 'node:fs'; fs.writeFileSync('lance', ''); setInterval(() => {}, 1000);");
  delegue.applicationDidFinishLaunching(vue, centre);
  ASSERT_TRUE(boucle->attendre([&] { return moteur->nousLavonsAllume(); }));
  EXPECT_EQ(delegue.applicationShouldTerminate(), ReponseFermeture::plusTard);
  ASSERT_TRUE(boucle->attendre([&] { return departs == 1; }));
  EXPECT_EQ(detailsDe("arret-fini"),
            (Journal::Details{{"message", std::string("Le serveur n’a pas été retrouvé : rien à fermer.")}}));
  // L’issue du démarrage interrompu se note, mais ne remplace pas l’écran de fermeture.
  ASSERT_TRUE(attendreLEtape("echec-demarrage"));
  EXPECT_EQ(vue.ecran().titre, "Fermeture…");
}

TEST_F(EssaiDelegue, QuitterAvantLeLancementInterditDeLancerQuoiQueCeSoit) {
  maison.ecrire("ressources/keltrove/serveur.mjs",
                "import fs from 'node:fs'; fs.writeFileSync('lance', '');");
  // Un étranger muet sur le port retient le démarrage avant tout lancement.
  const essais::ServeurFactice muet([](const essais::Connexion& c) { c.attendreSonDepart(20); });
  maison.ecrire(".zelcor/keltrove.json", fmt::format("{{\"port\": {}}}", muet.port()));
  delegue.applicationDidFinishLaunching(vue, centre);
  EXPECT_EQ(delegue.applicationShouldTerminate(), ReponseFermeture::maintenant);
  ASSERT_TRUE(attendreLEtape("echec-demarrage"));
  EXPECT_FALSE(moteur->nousLavonsAllume());
}

TEST_F(EssaiDelegue, EnModeEssaiLApplicationSeFermeDElleMemeALHeureDite) {
  ::setenv("KELTROVE_ESSAI", "1", 1);
  ::setenv("KELTROVE_ESSAI_QUITTER", "3", 1);
  int demandes = 0;
  delegue.quandOnVeutQuitter = [&] { ++demandes; };
  delegue.applicationDidFinishLaunching(vue, centre);
  ASSERT_TRUE(attendreLEtape("echec-demarrage"));
  boucle->avancer(2.99);
  EXPECT_EQ(demandes, 0);
  boucle->avancer(0.01);
  EXPECT_EQ(demandes, 1);
  EXPECT_EQ(etapes().back(), "essai-quitte-tout-seul");
}

TEST_F(EssaiDelegue, HorsDuModeEssaiLHeureDeFermetureEstSansEffet) {
  ::setenv("KELTROVE_ESSAI_QUITTER", "3", 1);
  delegue.applicationDidFinishLaunching(vue, centre);
  ASSERT_TRUE(attendreLEtape("echec-demarrage"));
  boucle->avancer(60);
  EXPECT_FALSE(aEteNotee("essai-quitte-tout-seul"));
}

} // namespace
} // namespace keltrove::app
