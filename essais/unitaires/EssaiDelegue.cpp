#include "DelegueEnEssai.hpp"

#include <fmt/format.h>

namespace keltrove::app {
namespace {

class EssaiDelegue : public DelegueEnEssai {
protected:
  // Il meurt dès qu’un fichier se pose dans son dossier.
  void montrerUnePageQuiPerdraSonServeur() {
    poserLeServeur("import fs from 'node:fs'; fs.watch('.', () => process.exit(3));");
    delegue.applicationDidFinishLaunching();
    ASSERT_TRUE(attendreLEtape("allume"));
    vue.observateur->quandNavigationFinie();
  }
};

TEST_F(EssaiDelegue, LePremierEcranPrecedeLaFenetreEtLeDemarrage) {
  delegue.applicationDidFinishLaunching();
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
  delegue.applicationDidFinishLaunching();
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
                                      .environnement = socle::Environnement::duProcessus()});
  bool allume = false;
  autre->demarrer([&](const moteur::Demarrage& issue) { allume = issue.has_value(); });
  ASSERT_TRUE(boucle->attendre([&] { return allume; }));

  delegue.applicationDidFinishLaunching();
  ASSERT_TRUE(attendreLEtape("rattache"));
  EXPECT_EQ(etapes(), (std::vector<std::string>{"demarrage-demande", "rattache"}));
  EXPECT_EQ(vue.ecran().titre, "keltrove est déjà en route");
  EXPECT_EQ(vue.ecran().phrase,
            fmt::format("Je me branche sur le serveur qui tourne (port {}) : rien n’a été relancé.",
                        maison.port()));

  const auto dessins = vue.ecrans.size();
  EXPECT_EQ(delegue.applicationShouldTerminate(), ReponseFermeture::maintenant);
  EXPECT_EQ(etapes().back(), "quitte-sans-toucher-au-serveur");
  vue.observateur->quandNavigationFinie();
  boucle->avancer(2);
  EXPECT_EQ(etapes().back(), "quitte-sans-toucher-au-serveur") << "plus rien de la page";
  EXPECT_EQ(vue.ecrans.size(), dessins) << "aucun écran de fermeture";
  EXPECT_TRUE(moteur->cEstBienKeltrove(maison.port()));

  bool arrete = false;
  autre->arreter([&](const std::string&) { arrete = true; });
  EXPECT_TRUE(boucle->attendre([&] { return arrete; }));
}

TEST_F(EssaiDelegue, UnEchecSeNoteAvecSonTitreEtUnNouvelEssaiLeDit) {
  delegue.applicationDidFinishLaunching();
  ASSERT_TRUE(attendreLEtape("echec-demarrage"));
  EXPECT_EQ(detailsDe("echec-demarrage"),
            (Journal::Details{{"cause", std::string("Le code de keltrove est introuvable")}}));
  EXPECT_TRUE(vue.ecran().boutonReessayer);
  boucle->avancer(60);
  EXPECT_EQ(std::ranges::count(etapes(), "demarrage-demande"), 1) << "aucun essai de soi-même";

  poserLeServeur();
  vue.observateur->quandOnReessaie();
  EXPECT_EQ(vue.ecran().titre, "Nouvel essai…");
  EXPECT_TRUE(attendreLEtape("allume"));
}

TEST_F(EssaiDelegue, ReessayerPendantUnDemarrageNeFaitRien) {
  poserLeServeur();
  delegue.applicationDidFinishLaunching();
  const auto dessins = vue.ecrans.size();
  vue.observateur->quandOnReessaie();
  vue.observateur->quandOnReessaie();
  EXPECT_EQ(vue.ecrans.size(), dessins);
  ASSERT_TRUE(attendreLEtape("allume"));
  EXPECT_EQ(std::ranges::count(etapes(), "demarrage-demande"), 1);
}

TEST_F(EssaiDelegue, LeMotDeMiseAJourSeMontreUneFoisDansLeBandeau) {
  poserLeServeur("console.log('MESSAGE= Version 2 prête\\t');");
  delegue.applicationDidFinishLaunching();
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
  delegue.applicationDidFinishLaunching();
  ASSERT_TRUE(attendreLEtape("allume"));
  boucle->avancer(2.99);
  maison.ecrire("ressources/keltrove/dire", "");
  ASSERT_TRUE(boucle->attendre([&] { return moteur->messageDeMiseAJour().has_value(); }));
  EXPECT_FALSE(aEteNotee("bandeau"));
  boucle->avancer(0.01);
  EXPECT_TRUE(aEteNotee("bandeau"));
  boucle->avancer(3.99);
  EXPECT_TRUE(vue.bandeaux.back().visible);
  boucle->avancer(0.01);
  EXPECT_FALSE(vue.bandeaux.back().visible) << "quatre secondes";
}

TEST_F(EssaiDelegue, UnMotVenuApresTroisSecondesNeSeMontreJamais) {
  poserLeServeur(annonceSurDemande);
  delegue.applicationDidFinishLaunching();
  ASSERT_TRUE(attendreLEtape("allume"));
  boucle->avancer(3.0); // le treizième regard, et le dernier
  maison.ecrire("ressources/keltrove/dire", "");
  ASSERT_TRUE(boucle->attendre([&] { return moteur->messageDeMiseAJour().has_value(); }));
  boucle->avancer(60);
  EXPECT_FALSE(aEteNotee("bandeau"));
}

TEST_F(EssaiDelegue, LaMortDuServeurEnServiceSeMontreAussitotEtLaSurveillanceSArrete) {
  poserLeServeur(
      "import fs from 'node:fs'; fs.watch('.', () => { console.log('au revoir'); process.exit(3); });");
  delegue.applicationDidFinishLaunching();
  ASSERT_TRUE(attendreLEtape("allume"));
  vue.observateur->quandNavigationFinie();
  boucle->avancer(5); // plus rien d’autre que le guet n’attend
  ASSERT_EQ(boucle->minuteursEnAttente(), 1U);
  maison.ecrire("ressources/keltrove/fin", "");
  ASSERT_TRUE(attendreLEtape("serveur-mort-en-route"));
  EXPECT_EQ(boucle->minuteursEnAttente(), 0U);
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
  delegue.applicationDidFinishLaunching();
  ASSERT_TRUE(attendreLEtape("allume"));
  vue.observateur->quandNavigationFinie();
  maison.ecrire("ressources/keltrove/geler", "");
  for (int regards = 0; regards < 10 && !aEteNotee("serveur-ne-repond-plus"); ++regards)
    attendreUnRegard();
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

TEST_F(EssaiDelegue, LeGuetNAttendPasQueLaPageSoitLa) {
  poserLeServeur("import fs from 'node:fs'; fs.watch('.', () => process.kill(process.pid, 'SIGSTOP'));");
  delegue.applicationDidFinishLaunching();
  ASSERT_TRUE(attendreLEtape("allume"));
  maison.ecrire("ressources/keltrove/geler", "");
  for (int regards = 0; regards < 9 && !aEteNotee("serveur-ne-repond-plus"); ++regards)
    attendreUnRegard();
  EXPECT_TRUE(aEteNotee("serveur-ne-repond-plus"));
  EXPECT_FALSE(aEteNotee("page-ratee"));
}

TEST_F(EssaiDelegue, UnNouvelEssaiPendantQueLeGuetRateLArreteAussitot) {
  poserLeServeur("import fs from 'node:fs'; fs.watch('.', () => process.kill(process.pid, 'SIGSTOP'));");
  delegue.applicationDidFinishLaunching();
  ASSERT_TRUE(attendreLEtape("allume"));
  vue.observateur->quandNavigationFinie();
  boucle->avancer(5); // plus rien d’autre que le guet n’attend
  maison.ecrire("ressources/keltrove/geler", "");
  for (int regards = 0; regards < 2; ++regards)
    attendreUnRegard();
  ASSERT_FALSE(aEteNotee("serveur-ne-repond-plus"));
  ASSERT_EQ(boucle->minuteursEnAttente(), 1U);
  vue.observateur->quandOnRecharge();
  EXPECT_EQ(boucle->minuteursEnAttente(), 0U);
  boucle->avancer(60);
  ASSERT_TRUE(attendreLEtape("echec-demarrage"));
  EXPECT_FALSE(aEteNotee("serveur-ne-repond-plus"));
}

TEST_F(EssaiDelegue, UnNouvelEssaiAbandonneLaPageQuiSeChargeait) {
  poserLeServeur();
  delegue.applicationDidFinishLaunching();
  ASSERT_TRUE(attendreLEtape("allume"));
  vue.observateur->quandOnRecharge();
  EXPECT_EQ(vue.chargementsArretes, 1);
  vue.observateur->quandNavigationFinie();
  EXPECT_EQ(vue.ecran().titre, "Nouvel essai…");
  ASSERT_TRUE(attendreLEtape("rattache"));
  vue.observateur->quandNavigationFinie();
  boucle->avancer(120);
  EXPECT_FALSE(aEteNotee("page-ratee"));
  EXPECT_EQ(std::ranges::count(etapes(), "page-affichee"), 1);
}

TEST_F(EssaiDelegue, LaMortPendantLeChargementResteLaRaisonMontree) {
  poserLeServeur("import fs from 'node:fs'; fs.watch('.', () => process.exit(3));");
  delegue.applicationDidFinishLaunching();
  ASSERT_TRUE(attendreLEtape("allume"));
  maison.ecrire("ressources/keltrove/fin", "");
  ASSERT_TRUE(attendreLEtape("serveur-mort-en-route"));
  vue.observateur->quandNavigationRatee({.description = "connexion refusée"});
  boucle->avancer(120);
  EXPECT_EQ(vue.ecran().titre, "Le serveur s’est arrêté");
  EXPECT_FALSE(aEteNotee("page-ratee"));
}

TEST_F(EssaiDelegue, UnePageRevenueDElleMemeEstDeNouveauSurveillee) {
  montrerUnePageQuiPerdraSonServeur();
  maison.ecrire("ressources/keltrove/fin", "");
  ASSERT_TRUE(attendreLEtape("serveur-mort-en-route"));
  // Un autre l’a rallumé, et la page s’est rechargée ; puis il disparaît à son tour.
  vue.observateur->quandNavigationCommence();
  vue.observateur->quandNavigationFinie();
  EXPECT_FALSE(vue.ecran().visible);
  for (int regards = 0; regards < 10 && !aEteNotee("serveur-ne-repond-plus"); ++regards)
    attendreUnRegard();
  EXPECT_TRUE(aEteNotee("serveur-ne-repond-plus"));
}

TEST_F(EssaiDelegue, UnePageRevenueDElleMemeApresUnNouvelEssaiRateSeMontre) {
  montrerUnePageQuiPerdraSonServeur();
  maison.ecrire("ressources/keltrove/serveur.mjs", "process.exit(4);");
  ASSERT_TRUE(attendreLEtape("serveur-mort-en-route"));
  vue.observateur->quandOnRecharge();
  ASSERT_TRUE(attendreLEtape("echec-demarrage"));
  vue.observateur->quandNavigationCommence();
  vue.observateur->quandNavigationFinie();
  EXPECT_FALSE(vue.ecran().visible);
  EXPECT_EQ(std::ranges::count(etapes(), "page-affichee"), 2);
}

TEST_F(EssaiDelegue, UnePageRevenueDElleMemePendantUnNouvelEssaiNEstPasEncoreSurveillee) {
  montrerUnePageQuiPerdraSonServeur();
  boucle->avancer(5); // plus rien d’autre que le guet n’attend
  // Un étranger muet sur le port retient le nouvel essai.
  const essais::ServeurFactice muet([](const essais::Connexion& c) { c.attendreSonDepart(20); });
  maison.ecrire(".zelcor/keltrove.json", fmt::format("{{\"port\": {}}}", muet.port()));
  vue.observateur->quandOnRecharge();
  maison.ecrire("ressources/keltrove/fin", "");
  ASSERT_TRUE(attendreLEtape("serveur-mort-en-route"));
  vue.observateur->quandNavigationCommence();
  vue.observateur->quandNavigationFinie();
  ASSERT_EQ(std::ranges::count(etapes(), "page-affichee"), 2);
  ASSERT_FALSE(aEteNotee("echec-demarrage"));
  boucle->avancer(1); // le temps de sonder la page
  EXPECT_EQ(boucle->minuteursEnAttente(), 0U);
  delegue.applicationShouldTerminate();
  EXPECT_TRUE(attendreLEtape("echec-demarrage"));
}

TEST_F(EssaiDelegue, PartiIlNEcoutePlusLeMoteur) {
  {
    DelegueApplication bref(moteur, boucle, bureau);
    bref.applicationDidFinishLaunching();
    EXPECT_TRUE(moteur->quandLeServeurMeurt);
  }
  EXPECT_FALSE(moteur->quandLeServeurMeurt);
}

TEST_F(EssaiDelegue, UnSecondDemarrageNInterromptPasLeGuetDuPremier) {
  poserLeServeur(annonceSurDemande);
  delegue.applicationDidFinishLaunching();
  ASSERT_TRUE(attendreLEtape("allume"));
  boucle->avancer(2);
  vue.observateur->quandOnRecharge();
  ASSERT_TRUE(attendreLEtape("rattache"));
  maison.ecrire("ressources/keltrove/dire", "");
  ASSERT_TRUE(boucle->attendre([&] { return moteur->messageDeMiseAJour().has_value(); }));
  boucle->avancer(60);
  EXPECT_EQ(std::ranges::count(etapes(), "bandeau"), 2) << "une fois par démarrage";
}

TEST_F(EssaiDelegue, LesMenusSontPosesEtLaPermissionDemandeeUneFois) {
  delegue.applicationDidFinishLaunching();
  EXPECT_EQ(vue.menus.size(), 4U);
  EXPECT_EQ(centre.lectures.size(), 1U);
  EXPECT_TRUE(centre.delegue);
  EXPECT_TRUE(attendreLEtape("echec-demarrage"));
  vue.observateur->quandOnRecharge();
  EXPECT_EQ(std::ranges::count(etapes(), "demarrage-demande"), 2);
  EXPECT_TRUE(attendreLEtape("echec-demarrage", 2));
  EXPECT_EQ(centre.lectures.size(), 1U);
}

TEST_F(EssaiDelegue, RelanceeElleRevientDevantOuSeRouvriraUneFoisFermee) {
  poserLeServeur();
  delegue.applicationDidFinishLaunching();
  ASSERT_TRUE(attendreLEtape("allume"));
  delegue.quandOnNousRelance();
  EXPECT_EQ(bureau.activations, 1);
  EXPECT_EQ(vue.devant, 2);
  EXPECT_FALSE(delegue.aRouvrir());
  delegue.applicationShouldTerminate();
  delegue.quandOnNousRelance();
  EXPECT_EQ(vue.devant, 2);
  EXPECT_TRUE(delegue.aRouvrir());
  ASSERT_TRUE(boucle->attendre([&] { return bureau.departs == 1; }));
}

TEST_F(EssaiDelegue, NiEnModeEssaiNiEnModeDiscretLaPermissionNEstDemandee) {
  int essais = 0;
  for (const char* mode : {"KELTROVE_ESSAI", "KELTROVE_DISCRET"}) {
    ::setenv(mode, "1", 1);
    essais::BureauEnregistreur autreBureau;
    DelegueApplication autre(moteur, boucle, autreBureau);
    autre.applicationDidFinishLaunching();
    EXPECT_TRUE(autreBureau.centre.lectures.empty()) << mode;
    EXPECT_FALSE(autreBureau.centre.delegue) << mode;
    // Le moteur lit l’environnement : il doit avoir fini avant que l’essai ne le change.
    EXPECT_TRUE(attendreLEtape("echec-demarrage", ++essais));
    ::unsetenv(mode);
  }
}

} // namespace
} // namespace keltrove::app
