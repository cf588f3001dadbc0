#include "fenetre/EcranAttente.hpp"

#include <vector>

#include <gtest/gtest.h>

namespace keltrove::fenetre {
namespace {

using moteur::ErreurServeur;

class EssaiEcran : public testing::Test {
protected:
  EssaiEcran() {
    ecran.quandOnDessine = [this](const EtatEcran& etat) { dessins.push_back(etat); };
  }
  EcranAttente ecran;
  std::vector<EtatEcran> dessins;
};

TEST_F(EssaiEcran, NaitVisibleEtVideSansRienDessiner) {
  EXPECT_EQ(ecran.etat(), EtatEcran{});
  EXPECT_TRUE(ecran.etat().visible);
  EXPECT_TRUE(dessins.empty());
}

TEST_F(EssaiEcran, LeClavierVaAuBoutonSIlYEnAUnEtALaPageUneFoisLEcranEfface) {
  EXPECT_EQ(EtatEcran{}.clavier(), EtatEcran::Clavier::ecran);
  EXPECT_EQ(EtatEcran{.boutonReessayer = true}.clavier(), EtatEcran::Clavier::reessayer);
  EXPECT_EQ((EtatEcran{.visible = false, .boutonReessayer = true}.clavier()), EtatEcran::Clavier::page);
}

TEST_F(EssaiEcran, LAttenteMontreTitrePhraseEtRoueRienDAutre) {
  ecran.montrerAttente("Titre", "Phrase");
  EXPECT_EQ(dessins.back(), (EtatEcran{.roue = true, .titre = "Titre", .phrase = "Phrase"}));
}

TEST_F(EssaiEcran, LeProblemeMontreConseilBoutonsEtDetailReplie) {
  ecran.montrerProbleme("T", "P", "C", "journal");
  EXPECT_EQ(dessins.back(), (EtatEcran{.titre = "T",
                                       .phrase = "P",
                                       .conseil = "C",
                                       .boutonReessayer = true,
                                       .boutonDetail = true,
                                       .detail = "journal"}));
}

TEST_F(EssaiEcran, UnConseilVideEtUnDetailAbsentOuVideNeMontrentRien) {
  for (const auto& detail : {std::optional<std::string>{}, std::optional<std::string>{""}}) {
    ecran.montrerProbleme("T", "P", "", detail);
    EXPECT_EQ(ecran.etat().conseil, "");
    EXPECT_FALSE(ecran.etat().boutonDetail);
    EXPECT_TRUE(ecran.etat().boutonReessayer);
  }
}

TEST_F(EssaiEcran, SansNouveauDetailLAncienTexteResteDansLaVueCachee) {
  ecran.montrerProbleme("T", "P", "C", "ancien");
  ecran.montrerProbleme("T", "P", "C", std::nullopt);
  EXPECT_EQ(ecran.etat().detail, "ancien");
  EXPECT_FALSE(ecran.etat().boutonDetail);
}

TEST_F(EssaiEcran, DeplierPuisReplierChangeLeTitreDuBouton) {
  ecran.montrerProbleme("T", "P", "C", "journal");
  EXPECT_EQ(ecran.etat().titreDuBoutonDetail, "Voir le détail");
  ecran.basculerDetail();
  EXPECT_TRUE(dessins.back().cadreDetail);
  EXPECT_EQ(dessins.back().titreDuBoutonDetail, "Masquer le détail");
  ecran.basculerDetail();
  EXPECT_FALSE(dessins.back().cadreDetail);
  EXPECT_EQ(dessins.back().titreDuBoutonDetail, "Voir le détail");
}

TEST_F(EssaiEcran, ToutNouvelAffichageReplieLeDetail) {
  const std::vector<std::function<void()>> affichages = {
      [this] { ecran.montrerAttente("T", "P"); },
      [this] { ecran.montrerProbleme("T", "P", "C", "journal"); },
      [this] { ecran.montrerErreur(moteur::PerduEnRoute{"journal"}); },
  };
  for (const auto& afficher : affichages) {
    ecran.montrerProbleme("T", "P", "C", "journal");
    ecran.basculerDetail();
    afficher();
    EXPECT_FALSE(ecran.etat().cadreDetail);
    EXPECT_EQ(ecran.etat().titreDuBoutonDetail, "Voir le détail");
  }
}

TEST_F(EssaiEcran, PasserDuProblemeALAttenteCacheConseilBoutonsEtDetailEtRelanceLaRoue) {
  ecran.montrerProbleme("T", "P", "C", "journal");
  ecran.basculerDetail();
  ecran.montrerAttente("Nouvel essai…", "…");
  EXPECT_EQ(ecran.etat(),
            (EtatEcran{.roue = true, .titre = "Nouvel essai…", .phrase = "…", .detail = "journal"}));
}

TEST_F(EssaiEcran, CacherArreteLaRoueEtUnAffichageRemontreLEcran) {
  ecran.montrerAttente("T", "P");
  ecran.cacher();
  EXPECT_FALSE(dessins.back().visible);
  EXPECT_FALSE(dessins.back().roue);
  ecran.montrerErreur(moteur::NodeIntrouvable{});
  EXPECT_TRUE(dessins.back().visible);
}

TEST_F(EssaiEcran, ReessayerSansPersonneALEcouteNeFaitRien) {
  ecran.reessayer();
  int appels = 0;
  ecran.quandOnReessaie = [&] { ++appels; };
  ecran.reessayer();
  EXPECT_EQ(appels, 1);
}

TEST_F(EssaiEcran, UneMortAuDemarrageSansSortieNAPasDeBoutonDetail) {
  ecran.montrerErreur(moteur::MortAuDemarrage{""});
  EXPECT_FALSE(ecran.etat().boutonDetail);
  ecran.montrerErreur(moteur::MortAuDemarrage{" "});
  EXPECT_TRUE(ecran.etat().boutonDetail);
}

TEST_F(EssaiEcran, ChaqueErreurMontreSonTitreSonExplicationSonConseilEtReessayer) {
  const std::string reessayer =
      "Cliquez sur « Réessayer ». Si cela recommence, montrez le détail ci-dessous.";
  const std::vector<std::pair<ErreurServeur, std::string>> conseils = {
      {moteur::CodeIntrouvable{{"/a"}}, "Réinstallez l’application depuis l’installateur fourni."},
      {moteur::LancementImpossible{"non"}, reessayer},
      {moteur::MortAuDemarrage{"j"}, reessayer},
      {moteur::PasDeReponse{1, 40, "j"}, reessayer},
      {moteur::PerduEnRoute{"j"}, reessayer},
      {moteur::NodeIntrouvable{},
       "Installez Node, ou attendez la version de l’application qui l’emporte avec elle."},
      {moteur::CodeModifie{}, "Réinstallez-la depuis " KELTROVE_SITE " : ne lancez pas une copie modifiée."},
  };
  for (const auto& [erreur, conseil] : conseils) {
    ecran.montrerErreur(erreur);
    EXPECT_EQ(ecran.etat().titre, titreCourt(erreur));
    EXPECT_EQ(ecran.etat().phrase, explication(erreur));
    EXPECT_EQ(ecran.etat().conseil, conseil);
    EXPECT_TRUE(ecran.etat().boutonReessayer);
    EXPECT_EQ(ecran.etat().boutonDetail, journal(erreur).has_value());
    EXPECT_FALSE(ecran.etat().roue);
  }
}

} // namespace
} // namespace keltrove::fenetre
