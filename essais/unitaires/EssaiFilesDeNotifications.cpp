#include "pont/FilesDeNotifications.hpp"

#include <gtest/gtest.h>

namespace keltrove::pont {
namespace {

class EssaiFiles : public testing::Test {
protected:
  using Clics = std::vector<std::optional<std::string>>;
  struct Delegue final : DelegueDuCentre {
    Clics clics;
    void quandOnClique(const std::optional<std::string>& terminal) override { clics.push_back(terminal); }
  };
  EssaiFiles() { files.deleguerA(&delegue); }
  struct Envoye {
    Notification notification;
    std::uint32_t remplace;
    std::function<void(const FilesDeNotifications::Issue&)> fini;
  };
  void ajouter(const std::string& id, const std::string& titre) {
    // Sans terminal, l’identifiant est unique.
    const auto identifiant = id.empty() ? "unique-" + titre : "keltrove-" + id;
    const auto terminal = id.empty() ? std::nullopt : std::optional(id);
    files.ajouter({identifiant, titre, "", terminal}, devant, [this, titre](const Remise& remise) {
      finis.push_back(titre + (std::holds_alternative<Posee>(remise) ? "" : " ratée"));
    });
  }
  Clics clicSur(std::uint32_t numero) {
    delegue.clics.clear();
    files.cliquer(numero);
    EXPECT_EQ(files.meneQuelquePart(numero), !delegue.clics.empty());
    return delegue.clics;
  }
  void repondre(std::size_t rang, std::uint32_t numero) { envois.at(rang).fini({Posee{}, numero}); }
  std::vector<std::string> titres() const {
    std::vector<std::string> lus;
    for (const auto& envoi : envois)
      lus.push_back(envoi.notification.titre);
    return lus;
  }

  Delegue delegue;
  bool devant = false;
  std::vector<Envoye> envois;
  std::vector<std::string> finis;
  FilesDeNotifications files{[this](const Notification& notification, std::uint32_t remplace, auto fini) {
    envois.push_back({notification, remplace, std::move(fini)});
  }};
};

using Textes = std::vector<std::string>;

TEST_F(EssaiFiles, PendantUnEnvoiSeuleLaPlusRecenteAttend) {
  for (int i = 0; i < 1000; ++i)
    ajouter("t1", std::to_string(i));
  EXPECT_EQ(titres(), Textes{"0"});
  repondre(0, 5);
  EXPECT_EQ(titres(), (Textes{"0", "999"}));
  EXPECT_EQ(envois[1].remplace, 5U) << "elle prend la place de la première";
  repondre(1, 5);
  EXPECT_EQ(finis, (Textes{"0", "999"}));
}

TEST_F(EssaiFiles, SansDelegueRienNEstMontreDevantEtUnClicNeMeneNullePart) {
  files.deleguerA(nullptr);
  devant = true;
  ajouter("t1", "a");
  EXPECT_EQ(titres(), Textes{});
  EXPECT_EQ(finis, Textes{"a"}) << "elle compte pour posée";
  devant = false;
  ajouter("t1", "b");
  repondre(0, 5);
  EXPECT_EQ(clicSur(5), Clics{});
}

TEST_F(EssaiFiles, AvecUnDelegueCeQuiVientDevantSeMontre) {
  devant = true;
  ajouter("t1", "a");
  EXPECT_EQ(titres(), Textes{"a"});
}

TEST_F(EssaiFiles, DeuxTerminauxNeSAttendentPas) {
  ajouter("t1", "a");
  ajouter("t2", "b");
  EXPECT_EQ(titres(), (Textes{"a", "b"}));
}

TEST_F(EssaiFiles, SansTerminalElleAttendSonTourEtLesPlusAnciennesSePerdent) {
  for (int i = 0; i < 100; ++i)
    ajouter("", std::to_string(i));
  for (std::size_t i = 0; i < envois.size(); ++i)
    repondre(i, static_cast<std::uint32_t>(i + 1));
  Textes voulus{"0"};
  for (int i = 84; i < 100; ++i)
    voulus.push_back(std::to_string(i));
  EXPECT_EQ(titres(), voulus);
  for (const auto& envoi : envois)
    EXPECT_EQ(envoi.remplace, 0U) << "elles ne se remplacent jamais";
}

TEST_F(EssaiFiles, UnRefusLaissePasserLaSuivante) {
  ajouter("t1", "a");
  ajouter("t1", "b");
  envois[0].fini({Refusee{"non"}, 0});
  EXPECT_EQ(finis, Textes{"a ratée"});
  EXPECT_EQ(titres(), (Textes{"a", "b"}));
  EXPECT_EQ(envois[1].remplace, 0U);
}

TEST_F(EssaiFiles, UneNotificationFermeeNEstPlusRemplaceeNiReconnue) {
  ajouter("t1", "a");
  repondre(0, 5);
  EXPECT_EQ(clicSur(5), Clics{"t1"});
  files.oublier(5);
  EXPECT_EQ(clicSur(5), Clics{});
  ajouter("t1", "b");
  EXPECT_EQ(envois[1].remplace, 0U);
}

TEST_F(EssaiFiles, UnServiceQuiDonneUnNouveauNumeroALaRemplacanteOublieLAncien) {
  ajouter("t1", "a");
  repondre(0, 5);
  ajouter("t1", "b");
  repondre(1, 6);
  EXPECT_EQ(clicSur(5), Clics{});
  EXPECT_EQ(clicSur(6), Clics{"t1"});
}

TEST_F(EssaiFiles, LesNumerosDUnServicePartiNeValentPlusRienMemeArrivesTard) {
  ajouter("t1", "a");
  repondre(0, 5);
  ajouter("t2", "b");
  files.toutOublier();
  repondre(1, 6);
  EXPECT_EQ(clicSur(5), Clics{});
  EXPECT_EQ(clicSur(6), Clics{});
  ajouter("t1", "c");
  EXPECT_EQ(envois[2].remplace, 0U);
}

TEST_F(EssaiFiles, UnServiceQuiNeDitJamaisFermerNeFaitPasGrossirLaMemoire) {
  for (std::uint32_t i = 1; i <= 1000; ++i) {
    ajouter("", std::to_string(i));
    repondre(i - 1, i);
  }
  EXPECT_EQ(clicSur(1000 - 256), Clics{});
  EXPECT_EQ(clicSur(1000 - 255), Clics{std::nullopt});
  EXPECT_EQ(clicSur(1000), Clics{std::nullopt});
}

} // namespace
} // namespace keltrove::pont
