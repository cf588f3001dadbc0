#include "DelegueEnEssai.hpp"

#include <fmt/format.h>

namespace keltrove::app {
namespace {

class EssaiFermeture : public DelegueEnEssai {};

TEST_F(EssaiFermeture, FermerNotreServeurLeDitAttendSaFinPuisPart) {
  poserLeServeur();
  delegue.applicationDidFinishLaunching();
  ASSERT_TRUE(attendreLEtape("allume"));
  vue.observateur->quandNavigationFinie();
  boucle->avancer(5); // plus rien d’autre que le guet n’attend
  ASSERT_EQ(boucle->minuteursEnAttente(), 1U);
  EXPECT_EQ(delegue.applicationShouldTerminate(), ReponseFermeture::plusTard);
  EXPECT_EQ(boucle->minuteursEnAttente(), 0U);
  EXPECT_EQ(vue.ecran().titre, "Fermeture…");
  EXPECT_EQ(vue.ecran().phrase, "Je laisse le serveur noter la liste des terminaux avant de partir.");
  EXPECT_TRUE(vue.ecran().roue);
  vue.observateur->quandNavigationRatee({.description = "la page s’est arrêtée"});
  vue.observateur->quandNavigationFinie();
  EXPECT_EQ(vue.ecran().titre, "Fermeture…");
  EXPECT_TRUE(vue.ecran().visible);
  EXPECT_FALSE(aEteNotee("page-ratee"));
  EXPECT_EQ(std::ranges::count(etapes(), "page-affichee"), 1);
  EXPECT_EQ(bureau.departs, 0);
  ASSERT_TRUE(boucle->attendre([&] { return bureau.departs == 1; }));
  const auto message = std::get<std::string>(detailsDe("arret-fini").at("message"));
  EXPECT_TRUE(message.starts_with("Serveur fermé proprement en ")) << message;
  EXPECT_FALSE(aEteNotee("serveur-mort-en-route"));
  EXPECT_FALSE(moteur->cEstBienKeltrove(maison.port()));
}

TEST_F(EssaiFermeture, QuitterDeuxFoisNeDemandeQuUnArretEtNeRelanceRien) {
  poserLeServeur();
  delegue.applicationDidFinishLaunching();
  ASSERT_TRUE(attendreLEtape("allume"));
  delegue.applicationShouldTerminate();
  EXPECT_EQ(delegue.applicationShouldTerminate(), ReponseFermeture::plusTard);
  vue.observateur->quandOnReessaie();
  ASSERT_TRUE(boucle->attendre([&] { return bureau.departs == 1; }));
  EXPECT_EQ(etapes(),
            (std::vector<std::string>{"demarrage-demande", "allume", "arret-demande", "arret-fini"}));
}

TEST_F(EssaiFermeture, QuitterPendantUnDemarrageArreteLeServeurLanceEtGardeLEcranDeFermeture) {
  maison.ecrire("ressources/keltrove/serveur.mjs",
                "import fs from 'node:fs'; fs.writeFileSync('lance', ''); setInterval(() => {}, 1000);");
  delegue.applicationDidFinishLaunching();
  ASSERT_TRUE(boucle->attendre([&] { return moteur->nousLavonsAllume(); }));
  EXPECT_EQ(delegue.applicationShouldTerminate(), ReponseFermeture::plusTard);
  ASSERT_TRUE(boucle->attendre([&] { return bureau.departs == 1; }));
  EXPECT_EQ(detailsDe("arret-fini"),
            (Journal::Details{{"message", std::string("Le serveur n’a pas été retrouvé : rien à fermer.")}}));
  // L’issue du démarrage interrompu se note, mais ne remplace pas l’écran de fermeture.
  ASSERT_TRUE(attendreLEtape("echec-demarrage"));
  EXPECT_EQ(vue.ecran().titre, "Fermeture…");
}

// Un étranger muet sur le port retient le démarrage avant tout lancement.
class EssaiFermetureAvantLeLancement : public EssaiFermeture {
protected:
  EssaiFermetureAvantLeLancement() {
    maison.ecrire("ressources/keltrove/serveur.mjs", "setInterval(() => {}, 1000);");
    maison.ecrire(".zelcor/keltrove.json", fmt::format("{{\"port\": {}}}", muet.port()));
    delegue.applicationDidFinishLaunching();
  }
  const essais::ServeurFactice muet{[](const essais::Connexion& c) { c.attendreSonDepart(20); }};
};

TEST_F(EssaiFermetureAvantLeLancement, QuitterInterditDeLancerQuoiQueCeSoit) {
  EXPECT_EQ(delegue.applicationShouldTerminate(), ReponseFermeture::maintenant);
  ASSERT_TRUE(attendreLEtape("echec-demarrage"));
  EXPECT_FALSE(moteur->nousLavonsAllume());
}

TEST_F(EssaiFermetureAvantLeLancement, PartirSansEcranAussi) {
  delegue.partirSansEcran();
  EXPECT_EQ(etapes().back(), "quitte-sans-toucher-au-serveur");
  ASSERT_TRUE(attendreLEtape("echec-demarrage"));
  EXPECT_FALSE(moteur->nousLavonsAllume());
}

TEST_F(EssaiFermeture, EnModeEssaiLApplicationSeFermeDElleMemeALHeureDite) {
  ::setenv("KELTROVE_ESSAI", "1", 1);
  ::setenv("KELTROVE_ESSAI_QUITTER", "3", 1);
  delegue.applicationDidFinishLaunching();
  ASSERT_TRUE(attendreLEtape("echec-demarrage"));
  boucle->avancer(2.99);
  EXPECT_EQ(bureau.fermetures, 0);
  boucle->avancer(0.01);
  EXPECT_EQ(bureau.fermetures, 1);
  EXPECT_EQ(etapes().back(), "essai-quitte-tout-seul");
}

TEST_F(EssaiFermeture, HorsDuModeEssaiLHeureDeFermetureEstSansEffet) {
  ::setenv("KELTROVE_ESSAI_QUITTER", "3", 1);
  delegue.applicationDidFinishLaunching();
  ASSERT_TRUE(attendreLEtape("echec-demarrage"));
  boucle->avancer(60);
  EXPECT_FALSE(aEteNotee("essai-quitte-tout-seul"));
}

TEST_F(EssaiFermeture, SansEcranNotreServeurEstArreteEtAttenduSurPlace) {
  poserLeServeur("process.on('SIGTERM', () => setTimeout(() => process.exit(0), 200));");
  delegue.applicationDidFinishLaunching();
  ASSERT_TRUE(attendreLEtape("allume"));
  delegue.partirSansEcran();
  EXPECT_EQ(etapes(),
            (std::vector<std::string>{"demarrage-demande", "allume", "arret-demande", "arret-fini"}));
  EXPECT_FALSE(moteur->cEstBienKeltrove(maison.port())) << "au retour, il est parti";
  const auto dites = etapes().size();
  delegue.partirSansEcran();
  EXPECT_EQ(etapes().size(), dites) << "une seconde fois ne demande rien";
}

TEST_F(EssaiFermeture, SansEcranUnServeurQuiNEstPasLeNotreResteEnPaix) {
  delegue.applicationDidFinishLaunching();
  ASSERT_TRUE(attendreLEtape("echec-demarrage"));
  delegue.partirSansEcran();
  EXPECT_EQ(etapes().back(), "quitte-sans-toucher-au-serveur");
}

} // namespace
} // namespace keltrove::app
