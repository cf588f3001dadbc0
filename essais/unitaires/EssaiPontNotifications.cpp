#include "BoucleVirtuelle.hpp"
#include "CentreEnregistreur.hpp"
#include "pont/PontNotifications.hpp"

#include <memory>

#include <gtest/gtest.h>

namespace keltrove::pont {
namespace {

using Lignes = std::vector<std::string>;

class EssaiPont : public testing::Test {
protected:
  EssaiPont() {
    pont->trace = [this](const std::string& ligne) { traces.push_back(ligne); };
    pont->vue = [this](const std::string& ligne) { lignes.push_back(ligne); };
    pont->activer = [this] { ++activations; };
  }
  void ecrire(const std::string& corps) {
    pont->userContentController("keltroveNotifications", lireLeMessage(corps));
  }
  const Notification& posee() const { return centre.notifications.back().first; }
  Lignes lignesDitesApres(const std::function<void()>& faire) {
    faire();
    boucle.vider();
    return std::exchange(lignes, {});
  }

  essais::BoucleVirtuelle boucle;
  essais::CentreEnregistreur centre;
  std::unique_ptr<PontNotifications> pont = std::make_unique<PontNotifications>(centre, boucle);
  Lignes traces;
  Lignes lignes;
  int activations = 0;
};

const std::string accorde = "window.keltrovePont && window.keltrovePont.etat(\"accorde\");";
const std::string refuse = "window.keltrovePont && window.keltrovePont.etat(\"refuse\");";
const std::string attente = "window.keltrovePont && window.keltrovePont.etat(\"attente\");";
const std::string absent = "window.keltrovePont && window.keltrovePont.etat(\"absent\");";

TEST_F(EssaiPont, UnAutreCanalNeLaissePasDeTrace) {
  pont->userContentController("keltrovenotifications", lireLeMessage(R"({"action":"notifier"})"));
  EXPECT_EQ(traces, Lignes{});
  EXPECT_TRUE(centre.notifications.empty());
}

TEST_F(EssaiPont, UnCorpsQuiNEstPasUnObjetEstIllisible) {
  for (const auto& corps :
       {std::optional<std::string>("[1]"), std::optional<std::string>("\"x\""),
        std::optional<std::string>("3"), std::optional<std::string>("null"), std::optional<std::string>()}) {
    traces.clear();
    pont->userContentController("keltroveNotifications", lireLeMessage(corps));
    EXPECT_EQ(traces, Lignes{"message du pont illisible"});
  }
  EXPECT_TRUE(centre.notifications.empty());
}

TEST_F(EssaiPont, UneActionInconnueAbsenteOuDUneAutreCasseEstTraceeEtIgnoree) {
  for (const char* corps : {R"({"action":"Notifier"})", R"({"action":"ETAT"})", R"({"action":3})", "{}",
                            R"({"action":"notifier "})"}) {
    traces.clear();
    ecrire(corps);
    EXPECT_EQ(traces, Lignes{std::string("message reçu de la page : ") + corps});
  }
  EXPECT_TRUE(centre.notifications.empty());
  EXPECT_TRUE(centre.lectures.empty());
  EXPECT_EQ(centre.reglagesOuverts, 0);
}

TEST_F(EssaiPont, NotifierPoseUneNotificationAuNomDuTerminal) {
  ecrire(R"({"action":"notifier","id":"t3","titre":" Un titre ","corps":"Un corps"})");
  EXPECT_EQ(posee(), (Notification{"keltrove-t3", "Un titre", "Un corps", "t3"}));
  ecrire(R"({"action":"notifier","id":"t3"})");
  EXPECT_EQ(posee().identifiant, "keltrove-t3") << "la seconde remplace la première";
}

TEST_F(EssaiPont, TitreEtCorpsOntLeursTextesParDefautEtLeursMaximums) {
  ecrire(R"({"action":"notifier","id":"t3","titre":"   ","corps":12})");
  EXPECT_EQ(posee(), (Notification{"keltrove-t3", "keltrove", "Ce terminal vous attend.", "t3"}));
  const std::string long80(80, 'a');
  const std::string long200(200, 'b');
  ecrire(R"({"action":"notifier","titre":")" + long80 + R"(","corps":")" + long200 + "\"}");
  EXPECT_EQ(posee().titre, long80);
  EXPECT_EQ(posee().corps, long200);
  ecrire(R"({"action":"notifier","titre":")" + long80 + R"(a","corps":")" + long200 + "b\"}");
  EXPECT_EQ(posee().titre, long80.substr(1) + "…");
  EXPECT_EQ(posee().corps, long200.substr(1) + "…");
}

TEST_F(EssaiPont, SansTerminalChaqueNotificationEstUnique) {
  ecrire(R"({"action":"notifier"})");
  const auto premiere = posee();
  ecrire(R"({"action":"notifier","id":""})");
  EXPECT_EQ(posee().terminal, std::nullopt);
  ecrire(R"({"action":"notifier","id":7})");
  EXPECT_EQ(premiere.identifiant.size(), std::string("keltrove-").size() + 36);
  EXPECT_NE(premiere.identifiant, posee().identifiant);
  EXPECT_EQ(posee().terminal, std::nullopt);
}

TEST_F(EssaiPont, LaRemiseSeTrace) {
  ecrire(R"({"action":"notifier","id":"t3"})");
  traces.clear();
  centre.notifications[0].second(Posee{});
  centre.notifications[0].second(Refusee{"trop de bruit"});
  centre.notifications[0].second(CentreAbsent{});
  EXPECT_EQ(traces,
            (Lignes{"notification posée : keltrove-t3", "le Mac a refusé la notification : trop de bruit"}));
}

TEST_F(EssaiPont, UnTitreImbriqueSansFinDonneLeTitreParDefaut) {
  ecrire("{\"action\":\"notifier\",\"titre\":" + std::string(100000, '[') + std::string(100000, ']') + "}");
  EXPECT_EQ(posee().titre, "keltrove");
}

TEST_F(EssaiPont, SansTraceRienNeSePasse) {
  pont->trace = nullptr;
  ecrire(R"({"action":"notifier","id":"t3"})");
  centre.notifications[0].second(Posee{});
  EXPECT_EQ(traces, Lignes{});
}

TEST_F(EssaiPont, ReglagesOuvreCeuxDuSysteme) {
  ecrire(R"({"action":"reglages"})");
  EXPECT_EQ(centre.reglagesOuverts, 1);
}

TEST_F(EssaiPont, LEtatDemandeParLaPageNeConsultePersonne) {
  const std::vector<std::pair<Autorisation, std::string>> etats{{Autorisation::accordee, accorde},
                                                                {Autorisation::refusee, refuse},
                                                                {Autorisation::indeterminee, attente},
                                                                {Autorisation::absente, absent}};
  for (const auto& [autorisation, ligne] : etats) {
    ecrire(R"({"action":"etat"})");
    EXPECT_EQ(lignesDitesApres([&] { centre.lectures.back()(autorisation); }), Lignes{ligne});
  }
  EXPECT_TRUE(centre.demandes.empty());
  EXPECT_TRUE(centre.drapeaux.empty());
  EXPECT_EQ(centre.delegue, nullptr) << "demander l’état ne fait pas du pont le délégué";
}

TEST_F(EssaiPont, LaPermissionConnueSuitLesReponses) {
  const auto repondre = [&](Autorisation autorisation) {
    pont->redireLEtat();
    centre.lectures.back()(autorisation);
    return pont->permissionAccordee();
  };
  EXPECT_FALSE(pont->permissionAccordee());
  EXPECT_FALSE(repondre(Autorisation::indeterminee));
  EXPECT_TRUE(repondre(Autorisation::accordee));
  EXPECT_TRUE(repondre(Autorisation::indeterminee));
  EXPECT_TRUE(repondre(Autorisation::absente));
  EXPECT_FALSE(repondre(Autorisation::refusee));
}

TEST_F(EssaiPont, LaPermissionDejaDonneeOuRefuseeNeSeRedemandePas) {
  pont->demanderLaPermissionUneSeuleFois();
  EXPECT_EQ(lignesDitesApres([&] { centre.lectures.back()(Autorisation::accordee); }), Lignes{accorde});
  pont->demanderLaPermissionUneSeuleFois();
  EXPECT_EQ(lignesDitesApres([&] { centre.lectures.back()(Autorisation::refusee); }), Lignes{refuse});
  pont->demanderLaPermissionUneSeuleFois();
  EXPECT_EQ(lignesDitesApres([&] { centre.lectures.back()(Autorisation::absente); }), Lignes{absent});
  EXPECT_TRUE(centre.demandes.empty());
  EXPECT_TRUE(centre.drapeaux.empty());
}

TEST_F(EssaiPont, LaPremiereFoisSeRetientPuisSeDemande) {
  for (const bool oui : {true, false}) {
    pont->demanderLaPermissionUneSeuleFois();
    EXPECT_EQ(lignesDitesApres([&] { centre.lectures.back()(Autorisation::indeterminee); }), Lignes{});
    EXPECT_EQ(centre.drapeaux.back(), "fr.zelcor.keltrove.permissionDejaDemandee");
    EXPECT_EQ(lignesDitesApres([&] { centre.demandes.back()(oui); }), Lignes{oui ? accorde : refuse});
    EXPECT_EQ(pont->permissionAccordee(), oui);
  }
}

TEST_F(EssaiPont, UnClicMetDevantEtOuvreLeTerminalDansLaPage) {
  pont->demanderLaPermissionUneSeuleFois();
  EXPECT_EQ(lignesDitesApres([&] { centre.delegue->quandOnClique("t\"3/"); }),
            Lignes{"window.keltrovePont && window.keltrovePont.ouvrir(\"t\\\"3\\/\");"});
  EXPECT_EQ(activations, 1);
}

TEST_F(EssaiPont, UnClicSansTerminalNAppellePasLaPage) {
  pont->demanderLaPermissionUneSeuleFois();
  EXPECT_EQ(lignesDitesApres([&] { centre.delegue->quandOnClique(std::nullopt); }), Lignes{});
  EXPECT_EQ(activations, 1);
}

TEST_F(EssaiPont, SansVueUnClicMetDevantEtLaLigneSePerd) {
  pont->vue = nullptr;
  pont->demanderLaPermissionUneSeuleFois();
  centre.delegue->quandOnClique("t3");
  boucle.vider();
  EXPECT_EQ(activations, 1);
  EXPECT_EQ(lignes, Lignes{});
}

TEST_F(EssaiPont, LesLignesPassentParLaFilePrincipaleDansLOrdre) {
  pont->executerDansLaPage("un");
  pont->executerDansLaPage("deux");
  EXPECT_EQ(lignes, Lignes{});
  boucle.vider();
  EXPECT_EQ(lignes, (Lignes{"un", "deux"}));
}

TEST_F(EssaiPont, CeQuiArriveApresLePontSePerd) {
  pont->demanderLaPermissionUneSeuleFois();
  pont->redireLEtat();
  pont->poser("t3", "T", "C");
  centre.delegue->quandOnClique("t3");
  pont->executerDansLaPage("ligne");
  pont.reset();
  EXPECT_EQ(centre.delegue, nullptr);
  traces.clear();
  for (const auto& fini : centre.lectures)
    fini(Autorisation::indeterminee);
  centre.notifications[0].second(Posee{});
  boucle.vider();
  EXPECT_EQ(lignes, Lignes{});
  EXPECT_EQ(traces, Lignes{});
  EXPECT_EQ(activations, 0);
  EXPECT_TRUE(centre.drapeaux.empty());
}

} // namespace
} // namespace keltrove::pont
