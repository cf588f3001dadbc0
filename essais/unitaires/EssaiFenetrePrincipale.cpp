#include "BoucleVirtuelle.hpp"
#include "BureauEnregistreur.hpp"
#include "fenetre/FenetrePrincipale.hpp"
#include "fenetre/SondeContenu.hpp"
#include "socle/Journal.hpp"

#include <cstdlib>

#include <gtest/gtest.h>

namespace keltrove::fenetre {
namespace {

namespace Journal = socle::Journal;

std::vector<std::string> nomsDesEtapes() {
  std::vector<std::string> noms;
  for (const auto& etape : Journal::etapes())
    noms.push_back(std::get<std::string>(etape.at("etape")));
  return noms;
}

Journal::Details derniereEtape() {
  auto etape = Journal::etapes().back();
  etape.erase("seconde");
  return etape;
}

class EssaiFenetre : public testing::Test {
protected:
  EssaiFenetre() {
    ::unsetenv("KELTROVE_ESSAI");
    ::unsetenv("KELTROVE_DISCRET");
  }
  essais::BoucleVirtuelle boucle;
  essais::BureauEnregistreur bureau;
  essais::VueEnregistreuse& vue = bureau.vue;
  essais::CentreEnregistreur& centre = bureau.centre;
  FenetrePrincipale fenetre{bureau, boucle};
};

TEST_F(EssaiFenetre, SeMontreDevantEnTempsOrdinaire) {
  fenetre.afficher();
  EXPECT_EQ(vue.devant, 1);
  EXPECT_EQ(vue.derriere, 0);
}

TEST_F(EssaiFenetre, ResteCacheeEnModeEssaiMemeDiscret) {
  ::setenv("KELTROVE_ESSAI", "1", 1);
  ::setenv("KELTROVE_DISCRET", "1", 1);
  fenetre.afficher();
  EXPECT_EQ(vue.devant + vue.derriere, 0);
}

TEST_F(EssaiFenetre, SeMetDerriereEtDitSonNumeroEnModeDiscret) {
  ::setenv("KELTROVE_DISCRET", "1", 1);
  testing::internal::CaptureStderr();
  fenetre.afficher();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "  [keltrove] numero-fenetre 1234\n");
  EXPECT_EQ(vue.derriere, 1);
  EXPECT_EQ(vue.devant, 0);
}

TEST_F(EssaiFenetre, ChargeLaPageDuPort) {
  fenetre.chargerLaPage(8080);
  EXPECT_EQ(vue.adresses, std::vector<std::string>{"http://localhost:8080/"});
}

TEST_F(EssaiFenetre, LaPageFinieCacheLEcranEtSeNoteAvecSonPort) {
  fenetre.ecran().montrerAttente("T", "P");
  fenetre.chargerLaPage(8080);
  vue.observateur->quandNavigationFinie();
  EXPECT_FALSE(vue.ecran().visible);
  EXPECT_EQ(derniereEtape(), (Journal::Details{{"etape", "page-affichee"}, {"port", std::int64_t{8080}}}));
}

TEST_F(EssaiFenetre, UnePageFinieSansPortSeNoteAvecZero) {
  vue.observateur->quandNavigationFinie();
  EXPECT_EQ(derniereEtape(), (Journal::Details{{"etape", "page-affichee"}, {"port", std::int64_t{0}}}));
}

TEST_F(EssaiFenetre, LeContenuEstSondeUneSecondeApres) {
  fenetre.chargerLaPage(8080);
  vue.observateur->quandNavigationFinie();
  boucle.avancer(0.99);
  EXPECT_TRUE(vue.evaluations.empty());
  boucle.avancer(0.01);
  ASSERT_EQ(vue.evaluations.size(), 1U);
  EXPECT_EQ(vue.evaluations[0].first,
            "document.title + '|' + document.querySelectorAll('*').length + '|' + "
            "(document.querySelector('meta[name=keltrove-jeton]')?.content === '__JETON__' ? "
            "'jeton-non-rempli' : 'jeton-rempli')");
  vue.evaluations[0].second("Accueil|52|jeton-rempli");
  EXPECT_EQ(derniereEtape(), (Journal::Details{{"etape", "page-contenu"},
                                               {"titre", "Accueil"},
                                               {"elements", std::int64_t{52}},
                                               {"cle", "jeton-rempli"}}));
}

TEST_F(EssaiFenetre, UneReponseQuiNEstPasUnTexteNeNoteRien) {
  vue.observateur->quandNavigationFinie();
  boucle.avancer(1);
  vue.evaluations.at(0).second(std::nullopt);
  EXPECT_EQ(nomsDesEtapes(), std::vector<std::string>{"page-affichee"});
}

TEST_F(EssaiFenetre, UneReponseApresLaFenetreNeNoteRien) {
  essais::BureauEnregistreur autre;
  std::function<void(std::optional<std::string>)> repondre;
  {
    FenetrePrincipale breve(autre, boucle);
    autre.vue.observateur->quandNavigationFinie();
    boucle.avancer(1);
    repondre = autre.vue.evaluations.at(0).second;
  }
  repondre("T|1|x");
  EXPECT_EQ(nomsDesEtapes(), std::vector<std::string>{"page-affichee"});
}

TEST_F(EssaiFenetre, UneLigneDuPontSePerdTantQuAucunePageNEstChargee) {
  fenetre.pont().executerDansLaPage("ligne");
  boucle.vider();
  EXPECT_TRUE(vue.evaluations.empty());
  fenetre.chargerLaPage(8080);
  fenetre.pont().executerDansLaPage("ligne");
  boucle.vider();
  EXPECT_EQ(vue.evaluations.at(0).first, "ligne");
}

TEST_F(EssaiFenetre, UnMessageDeLaPageVaAuPontEtUnClicRamene) {
  fenetre.pont().demanderLaPermissionUneSeuleFois();
  vue.observateur->quandLaPageEcrit("keltroveNotifications",
                                    pont::lireLeMessage(R"({"action":"notifier","id":"t1"})"));
  EXPECT_EQ(centre.notifications.at(0).first.identifiant, "keltrove-t1");
  centre.delegue->quandOnClique(std::nullopt);
  boucle.vider();
  EXPECT_EQ(bureau.activations, 1);
  EXPECT_EQ(vue.devant, 1);
}

TEST_F(EssaiFenetre, UnLienDAilleursVaAuNavigateurSurUnGesteEtLaPageResteIci) {
  fenetre.chargerLaPage(8080);
  const auto vers = [&](const std::string& adresse, Geste geste, bool fenetreNeuve = false) {
    return vue.observateur->laPageVeutOuvrir({adresse, fenetreNeuve, geste});
  };
  EXPECT_TRUE(vers("http://localhost:8080/", Geste::aucun));
  EXPECT_FALSE(vers("http://localhost:8080/", Geste::deLUtilisateur, true));
  EXPECT_FALSE(vers("https://exemple.fr/", Geste::deLUtilisateur));
  EXPECT_FALSE(vers("https://exemple.fr/boucle", Geste::aucun));
  EXPECT_FALSE(vers("file:///etc/passwd", Geste::deLUtilisateur));
  ASSERT_EQ(bureau.liens.size(), 2U);
  EXPECT_EQ(bureau.liens[0].first, "http://localhost:8080/");
  EXPECT_EQ(bureau.liens[1].first, "https://exemple.fr/");
}

TEST_F(EssaiFenetre, SeuleLaPageServieEstLaPage) {
  EXPECT_FALSE(vue.observateur->estLaPage("http://localhost:8080/"));
  fenetre.chargerLaPage(8080);
  EXPECT_TRUE(vue.observateur->estLaPage("http://localhost:8080/x"));
  EXPECT_FALSE(vue.observateur->estLaPage("http://localhost:8081/"));
}

TEST_F(EssaiFenetre, UnLienQueRienNOuvreSeDitSixSecondes) {
  vue.observateur->laPageVeutOuvrir({.adresse = "mailto:a", .geste = Geste::deLUtilisateur});
  bureau.liens.at(0).second();
  EXPECT_TRUE(vue.bandeaux.back().visible);
  EXPECT_EQ(vue.bandeaux.back().texte, "  Aucune application ne sait ouvrir ce lien : mailto:a  ");
  boucle.avancer(5.9);
  EXPECT_TRUE(vue.bandeaux.back().visible);
  boucle.avancer(0.1);
  EXPECT_FALSE(vue.bandeaux.back().visible);
}

TEST_F(EssaiFenetre, LesFichiersAuNomIllisibleSeComptentSixSecondes) {
  vue.observateur->quandDesFichiersSontIllisibles(1);
  EXPECT_EQ(vue.bandeaux.back().texte,
            "  Un fichier n’a pas été déposé : son nom est illisible. Renommez-le d’abord.  ");
  vue.observateur->quandDesFichiersSontIllisibles(2);
  EXPECT_EQ(vue.bandeaux.back().texte,
            "  2 fichiers n’ont pas été déposés : leur nom est illisible. Renommez-les d’abord.  ");
  boucle.avancer(6);
  EXPECT_FALSE(vue.bandeaux.back().visible);
  fenetre.ignorerLaPage();
  vue.observateur->quandDesFichiersSontIllisibles(1);
  EXPECT_FALSE(vue.bandeaux.back().visible);
}

constexpr const char* lecteurTourne = "window.keltroveLecteur = { tourne: true, voitLaPage: true }; "
                                      "window.dispatchEvent(new Event('lecteur'));";
constexpr const char* lecteurParti = "window.keltroveLecteur = { tourne: false, voitLaPage: true }; "
                                     "window.dispatchEvent(new Event('lecteur'));";
constexpr const char* pageInvisible = "window.keltroveLecteur = { tourne: false, voitLaPage: false }; "
                                      "window.dispatchEvent(new Event('lecteur'));";

TEST_F(EssaiFenetre, UnLecteurDEcranConnuAvantLaPageSeDitDesQuElleEstLa) {
  vue.observateur->quandLeLecteurDEcranChange({.tourne = true});
  EXPECT_TRUE(vue.evaluations.empty());
  fenetre.chargerLaPage(8080);
  vue.observateur->quandNavigationFinie();
  ASSERT_EQ(vue.evaluations.size(), 1U);
  EXPECT_EQ(vue.evaluations[0].first, lecteurTourne);
}

TEST_F(EssaiFenetre, UnLecteurDEcranQuiVientPuisPartSeDitUneFois) {
  fenetre.chargerLaPage(8080);
  vue.observateur->quandNavigationFinie();
  for (const bool tourne : {false, true, true, false})
    vue.observateur->quandLeLecteurDEcranChange({.tourne = tourne});
  ASSERT_EQ(vue.evaluations.size(), 2U);
  EXPECT_EQ(vue.evaluations[0].first, lecteurTourne);
  EXPECT_EQ(vue.evaluations[1].first, lecteurParti);
}

TEST_F(EssaiFenetre, UnePageQuUnLecteurNeVerraitPasLApprendAChaqueChargement) {
  vue.observateur->quandLeLecteurDEcranChange({.voitLaPage = false});
  for (int i = 0; i < 2; ++i) {
    fenetre.chargerLaPage(8080);
    vue.observateur->quandNavigationFinie();
  }
  ASSERT_EQ(vue.evaluations.size(), 2U);
  EXPECT_EQ(vue.evaluations[1].first, pageInvisible);
}

TEST_F(EssaiFenetre, CeQueLaPageFaitLireVaAuLecteurEtNonAuPont) {
  const auto ecrire = [&](const std::optional<std::string>& corps) {
    vue.observateur->quandLaPageEcrit("keltroveLecteur", pont::lireLeMessage(corps));
  };
  ecrire(R"("  « Terminal 2 » vous attend.\n")");
  for (const auto* autre : {R"({"action":"notifier","id":"t1"})", "12", "null", R"("  ")", "{", R"("\ud83d)"})
    ecrire(autre);
  ecrire(std::nullopt);
  EXPECT_EQ(vue.annonces, std::vector<std::string>{"« Terminal 2 » vous attend."});
  EXPECT_TRUE(centre.notifications.empty());
  ecrire("\"" + std::string(5000, 'a') + "\"");
  EXPECT_EQ(vue.annonces.back(), std::string(3999, 'a') + "…");
}

TEST_F(EssaiFenetre, LeRegardSeDitALaPageQuandIlChangeEtAChaqueChargement) {
  vue.observateur->quandLeRegardChange(true);
  EXPECT_TRUE(vue.evaluations.empty()) << "sans page, la ligne se perd";
  fenetre.chargerLaPage(8080);
  vue.observateur->quandNavigationFinie();
  for (const bool ici : {true, false, false})
    vue.observateur->quandLeRegardChange(ici);
  std::vector<std::string> dites;
  for (const auto& [expression, fini] : vue.evaluations)
    dites.push_back(expression);
  EXPECT_EQ(dites, (std::vector<std::string>{"window.keltrovePont?.regard?.(true)",
                                             "window.keltrovePont?.regard?.(false)"}));
}

TEST(SondeContenu, UnTitreVideDecaleLesMorceaux) {
  EXPECT_EQ(lireSonde("|52|jeton-rempli"),
            (Journal::Details{{"titre", "52"}, {"elements", std::int64_t{0}}, {"cle", "?"}}));
}

TEST(SondeContenu, UneReponseVideOuIllisibleDonneDesValeursNeutres) {
  EXPECT_EQ(lireSonde(""), (Journal::Details{{"titre", "?"}, {"elements", std::int64_t{0}}, {"cle", "?"}}));
  EXPECT_EQ(lireSonde("T|+5|c").at("elements"), Journal::Valeur(std::int64_t{5}));
  EXPECT_EQ(lireSonde("T|-5|c").at("elements"), Journal::Valeur(std::int64_t{-5}));
  EXPECT_EQ(lireSonde("T|+-5|c").at("elements"), Journal::Valeur(std::int64_t{0}));
  EXPECT_EQ(lireSonde("T|5x|c").at("elements"), Journal::Valeur(std::int64_t{0}));
  EXPECT_EQ(lireSonde("T|99999999999999999999|c").at("elements"), Journal::Valeur(std::int64_t{0}));
  EXPECT_EQ(lireSonde("A|B|5|c|d").at("cle"), Journal::Valeur("5"));
}

TEST_F(EssaiFenetre, UnePageRateeMontreLeProblemeAvecSonDetailEtSeNote) {
  fenetre.chargerLaPage(8080);
  vue.observateur->quandNavigationRatee({.description = "Connexion refusée"});
  EXPECT_EQ(
      vue.ecran(),
      (EtatEcran{.titre = "La page de keltrove ne s’affiche pas",
                 .phrase = "Le serveur répondait, mais la page n’a pas pu s’ouvrir. C’est souvent passager : "
                           "un nouvel essai suffit presque toujours.",
                 .conseil = "Cliquez sur « Réessayer ».",
                 .boutonReessayer = true,
                 .boutonDetail = true,
                 .detail = "Connexion refusée"}));
  EXPECT_EQ(derniereEtape(), (Journal::Details{{"etape", "page-ratee"}, {"raison", "Connexion refusée"}}));
}

TEST_F(EssaiFenetre, LaRaisonDUnePageSansProgrammeSeDitEnClair) {
  const std::vector<std::pair<CauseDEchec, std::string>> raisons{
      {CauseDEchec::lancementRefuse, "Le système n’a plus de quoi lancer le programme qui dessine la page."},
      {CauseDEchec::memoireDepassee, "Le programme qui dessine la page a dépassé la mémoire permise."},
      {CauseDEchec::arret, "Le programme qui dessine la page s’est arrêté."}};
  for (const auto& [cause, raison] : raisons) {
    fenetre.chargerLaPage(8080);
    vue.observateur->quandNavigationRatee({.cause = cause});
    EXPECT_EQ(vue.ecran().detail, raison);
    EXPECT_EQ(derniereEtape().at("raison"), Journal::Valeur(raison));
  }
}

TEST_F(EssaiFenetre, UnChargementRemplaceParUnAutreNeMontreRien) {
  fenetre.chargerLaPage(8080);
  fenetre.chargerLaPage(8081);
  vue.observateur->quandNavigationRatee({.cause = CauseDEchec::annulation, .description = "annulé"});
  EXPECT_TRUE(vue.ecrans.empty());
  EXPECT_TRUE(Journal::etapes().empty());
}

TEST_F(EssaiFenetre, UnePageMuetteSoixanteSecondesEstRatee) {
  fenetre.chargerLaPage(8080);
  boucle.avancer(59);
  vue.observateur->quandNavigationAvance();
  boucle.avancer(59);
  EXPECT_EQ(vue.chargementsArretes, 0);
  boucle.avancer(1);
  ASSERT_EQ(vue.chargementsArretes, 1);
  EXPECT_EQ(derniereEtape().at("etape"), Journal::Valeur("page-ratee"));
  EXPECT_EQ(derniereEtape().at("raison"), Journal::Valeur("La page a mis trop longtemps à répondre."));
  EXPECT_TRUE(vue.ecran().boutonReessayer);
  vue.observateur->quandNavigationAvance(); // ce qui était déjà en route
  boucle.avancer(300);
  EXPECT_EQ(nomsDesEtapes(), std::vector<std::string>{"page-ratee"});
}

TEST_F(EssaiFenetre, UnChargementAbandonneNADeFinNiDEchecNiDeDelai) {
  fenetre.chargerLaPage(8080);
  fenetre.chargement().seTaire();
  EXPECT_EQ(vue.chargementsArretes, 1);
  vue.observateur->quandNavigationFinie();
  vue.observateur->quandNavigationRatee({.description = "trop tard"});
  boucle.avancer(300);
  EXPECT_TRUE(Journal::etapes().empty());
  EXPECT_TRUE(vue.ecrans.empty());
}

TEST_F(EssaiFenetre, ApresUnAbandonSeuleLaPageSuivanteCompte) {
  fenetre.chargerLaPage(8080);
  fenetre.chargement().abandonner();
  vue.observateur->quandNavigationRatee({.description = "trop tard"});
  EXPECT_TRUE(Journal::etapes().empty());
  vue.observateur->quandNavigationCommence();
  vue.observateur->quandNavigationFinie();
  EXPECT_EQ(nomsDesEtapes(), std::vector<std::string>{"page-affichee"});
}

TEST_F(EssaiFenetre, DeuxPagesFiniesEnUneSecondeSontSondeesToutesLesDeux) {
  fenetre.chargerLaPage(8080);
  vue.observateur->quandNavigationFinie();
  boucle.avancer(0.5);
  vue.observateur->quandNavigationFinie();
  boucle.avancer(2);
  EXPECT_EQ(vue.evaluations.size(), 2U);
}

TEST_F(EssaiFenetre, ALaFermeturePlusRienDeLaPageNeVaAuJournal) {
  fenetre.chargerLaPage(8080);
  vue.observateur->quandNavigationFinie();
  boucle.avancer(1);
  vue.observateur->quandNavigationFinie();
  vue.observateur->laPageVeutOuvrir({.adresse = "mailto:a", .geste = Geste::deLUtilisateur});
  fenetre.ignorerLaPage();
  vue.evaluations.at(0).second("Accueil|52|jeton-rempli");
  boucle.avancer(2);
  vue.observateur->quandNavigationFinie();
  bureau.liens.at(0).second();
  EXPECT_EQ(nomsDesEtapes(), (std::vector<std::string>{"page-affichee", "page-affichee"}));
  EXPECT_EQ(vue.evaluations.size(), 1U);
}

TEST_F(EssaiFenetre, UnePageRateeAussitotNeRatePasUneSecondeFois) {
  vue.quandOnCharge = [this] { vue.observateur->quandNavigationRatee({.description = "refusée"}); };
  fenetre.chargerLaPage(8080);
  boucle.avancer(61);
  EXPECT_EQ(nomsDesEtapes(), std::vector<std::string>{"page-ratee"});
}

TEST_F(EssaiFenetre, UnePageFinieNAPlusDeDelai) {
  fenetre.chargerLaPage(8080);
  vue.observateur->quandNavigationFinie();
  vue.observateur->quandNavigationAvance();
  boucle.avancer(300);
  EXPECT_EQ(vue.chargementsArretes, 0);
}

TEST_F(EssaiFenetre, LeBandeauSEffaceApresSaDuree) {
  fenetre.afficherBandeau("Version 2 prête", 4);
  EXPECT_EQ(vue.bandeaux.back(), (EtatBandeau{.visible = true, .texte = "  Version 2 prête  "}));
  EXPECT_EQ(derniereEtape(), (Journal::Details{{"etape", "bandeau"}, {"texte", "Version 2 prête"}}));
  boucle.avancer(3.99);
  EXPECT_TRUE(vue.bandeaux.back().visible);
  boucle.avancer(0.01);
  EXPECT_FALSE(vue.bandeaux.back().visible);
}

TEST_F(EssaiFenetre, UnSecondBandeauDureToutSonTemps) {
  fenetre.afficherBandeau("un", 4);
  boucle.avancer(3);
  fenetre.afficherBandeau("deux", 4);
  boucle.avancer(3.99);
  EXPECT_EQ(vue.bandeaux.back(), (EtatBandeau{.visible = true, .texte = "  deux  "}));
  boucle.avancer(0.01);
  EXPECT_FALSE(vue.bandeaux.back().visible);
}

TEST_F(EssaiFenetre, ReessayerEtRechargerMenentAuMemeAppel) {
  vue.observateur->quandOnReessaie(); // personne n’écoute encore
  int essais = 0;
  fenetre.quandOnDemandeUnEssai = [&] { ++essais; };
  vue.observateur->quandOnReessaie();
  fenetre.rechargerVraiment();
  EXPECT_EQ(essais, 2);
}

TEST_F(EssaiFenetre, LeBoutonDuDetailDeplieLEcran) {
  fenetre.ecran().montrerProbleme("T", "P", "C", "journal");
  vue.observateur->quandOnBasculeLeDetail();
  EXPECT_TRUE(vue.ecran().cadreDetail);
}

} // namespace
} // namespace keltrove::fenetre
