#include "MaisonTemporaire.hpp"
#include "ServeurFactice.hpp"
#include "moteur/Sonde.hpp"

#include <atomic>
#include <chrono>
#include <cstdlib>

#include <gtest/gtest.h>

namespace keltrove::moteur {
namespace {

using essais::Connexion;
using essais::reponseHTTP;
using essais::ServeurFactice;

constexpr const char* page = "<meta name=\"keltrove-jeton\" content=\"x\">";

class EssaiSonde : public testing::Test {
protected:
  void poserLeJeton(std::string_view contenu) const { maison.ecrire(".zelcor/keltrove-jeton", contenu); }

  static double secondes(const std::function<void()>& action) {
    const auto debut = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - debut).count();
  }
  // Faux, et dans le temps dit : c’est la promesse faite au démarrage et à la surveillance.
  static void attendreFaux(const std::function<void(const Connexion&)>& jouer, const char* quoi) {
    const ServeurFactice serveur(jouer);
    bool reponse = true;
    EXPECT_LT(secondes([&] { reponse = cEstBienKeltrove(serveur.port()); }), 3.0) << quoi;
    EXPECT_FALSE(reponse) << quoi;
    EXPECT_FALSE(serveur.requetes().empty()) << quoi;
  }
  std::optional<Sante> santePour(const std::string& corps) const {
    poserLeJeton("abc");
    const ServeurFactice serveur(reponseHTTP("200 OK", corps));
    return sante(serveur.port());
  }

  essais::MaisonTemporaire maison;
};

TEST_F(EssaiSonde, UnePageQuiPorteLaMarqueEstLaNotre) {
  const ServeurFactice serveur(reponseHTTP("200 OK", page));
  EXPECT_TRUE(cEstBienKeltrove(serveur.port()));
  ASSERT_EQ(serveur.requetes().size(), 1U);
  EXPECT_TRUE(serveur.requetes()[0].starts_with("GET / HTTP/1.1\r\n"));
  EXPECT_FALSE(serveur.requetes()[0].contains("jeton"));
}

TEST_F(EssaiSonde, UnPortOuPersonneNEcouteOuImpossibleEstFaux) {
  EXPECT_FALSE(cEstBienKeltrove(maison.port()));
  for (const int port : {-1, 0, 65536, 1'000'000})
    EXPECT_FALSE(cEstBienKeltrove(port));
}

TEST_F(EssaiSonde, UnServeurEtrangerNEstPasLeNotre) {
  attendreFaux([](const auto& c) { c.envoyer(reponseHTTP("200 OK", "Bonjour")); }, "sans marque");
  attendreFaux([](const auto& c) { c.envoyer(reponseHTTP("404 Not Found", page)); }, "404");
  attendreFaux([](const auto& c) { c.envoyer(reponseHTTP("201 Created", page)); }, "201");
  attendreFaux([](const auto& c) { c.envoyer("HTTP/1.1 204 No Content\r\n\r\n"); }, "204");
  attendreFaux([](const auto& c) { c.envoyer(reponseHTTP("302 Found", page)); }, "redirection sans but");
  attendreFaux([](const auto& c) { c.envoyer(reponseHTTP("200 OK", "keltrove-jeton \xff")); },
               "pas de l’UTF-8");
  attendreFaux([](const auto& c) { c.envoyer("SSH-2.0-OpenSSH_9.2\r\nkeltrove-jeton\r\n"); }, "pas du HTTP");
}

TEST_F(EssaiSonde, UnServeurMuetLentOuQuiRaccrocheEstFauxDansLeTempsDit) {
  attendreFaux([](const auto& c) { c.attendreSonDepart(20); }, "muet");
  attendreFaux(
      [](const auto& c) { c.envoyer("HTTP/1.1 200 OK\r\nContent-Length: 999\r\n\r\nkeltrove-jeton"); },
      "raccroche au milieu du corps");
  attendreFaux(
      [](const auto& c) {
        c.envoyer("HTTP/1.1 200 OK\r\nContent-Length: 999\r\n\r\nkeltrove-jeton");
        while (c.envoyer("x"))
          c.attendreSonDepart(1);
      },
      "un octet par seconde");
  attendreFaux(
      [](const auto& c) {
        c.envoyer("HTTP/1.1 200 OK\r\n");
        while (c.envoyer("X-Sans-Fin: oui\r\n")) {
        }
      },
      "en-têtes sans fin");
}

TEST_F(EssaiSonde, UneReponseSansFinNeCoutePasDeMemoire) {
  const std::string bloc(1 << 20, 'x');
  std::size_t envoyes = 0;
  attendreFaux(
      [&](const auto& c) {
        c.envoyer("HTTP/1.1 200 OK\r\n\r\nkeltrove-jeton");
        while (c.envoyer(bloc))
          envoyes += bloc.size();
      },
      "corps sans fin");
  EXPECT_LT(envoyes, std::size_t{64} << 20) << "la lecture s’arrête vers 16 Mio";
}

TEST_F(EssaiSonde, UnCorpsJusteSousLaLimiteEstLuEtUnOctetDePlusEstTrop) {
  const auto enTete =
      reponseHTTP("200 OK", std::string(), "").size() + 7; // la longueur s’écrit sur huit chiffres
  const auto limite = (std::size_t{16} << 20) - enTete;
  std::string corps = "keltrove-jeton";
  corps.resize(limite, ' ');
  EXPECT_TRUE(cEstBienKeltrove(ServeurFactice(reponseHTTP("200 OK", corps)).port()));
  corps.resize((std::size_t{16} << 20) + 1, ' ');
  EXPECT_FALSE(cEstBienKeltrove(ServeurFactice(reponseHTTP("200 OK", corps)).port()));
}

TEST_F(EssaiSonde, UneRedirectionEstSuivieMaisPasSansFin) {
  const ServeurFactice nous(reponseHTTP("200 OK", page));
  const auto versNous = "Location: http://127.0.0.1:" + std::to_string(nous.port()) + "/ici\r\n";
  EXPECT_TRUE(cEstBienKeltrove(ServeurFactice(reponseHTTP("302 Found", "", versNous)).port()));
  attendreFaux([](const auto& c) { c.envoyer(reponseHTTP("302 Found", page, "Location: /encore\r\n")); },
               "redirections sans fin");
  attendreFaux(
      [](const auto& c) { c.envoyer(reponseHTTP("302 Found", page, "Location: file:///etc/passwd\r\n")); },
      "redirection vers un fichier");
}

TEST_F(EssaiSonde, VingtRedirectionsSontSuiviesPasVingtEtUne) {
  for (const int redirections : {20, 21}) {
    std::atomic<int> restantes = redirections;
    const ServeurFactice serveur([&](const auto& client) {
      client.envoyer(restantes-- > 0 ? reponseHTTP("302 Found", "", "Location: /encore\r\n")
                                     : reponseHTTP("200 OK", page));
    });
    EXPECT_EQ(cEstBienKeltrove(serveur.port()), redirections == 20) << redirections;
  }
}

TEST_F(EssaiSonde, AucunMandataireNEstJamaisUtilise) {
  const ServeurFactice mandataire(reponseHTTP("200 OK", page));
  const auto adresse = "http://127.0.0.1:" + std::to_string(mandataire.port());
  for (const auto* variable : {"http_proxy", "HTTP_PROXY", "all_proxy", "ALL_PROXY"})
    ::setenv(variable, adresse.c_str(), 1);
  EXPECT_FALSE(cEstBienKeltrove(maison.port()));
  EXPECT_TRUE(mandataire.requetes().empty());
}

TEST_F(EssaiSonde, SansJetonAucuneRequeteNEstFaite) {
  const ServeurFactice serveur(reponseHTTP("200 OK", "{}"));
  EXPECT_EQ(sante(serveur.port()), std::nullopt);
  poserLeJeton(" \n");
  EXPECT_EQ(sante(serveur.port()), std::nullopt);
  EXPECT_TRUE(serveur.requetes().empty());
}

TEST_F(EssaiSonde, UnJetonQuiAjouteraitUnEnTeteNeFaitAucuneRequete) {
  const ServeurFactice serveur(reponseHTTP("200 OK", "{}"));
  using namespace std::string_view_literals;
  for (const auto jeton : {"abc\r\nX-Autre: oui"sv, "abc\nX-Autre: oui"sv, "abc\rdef"sv, "abc\0def"sv}) {
    poserLeJeton(jeton);
    EXPECT_EQ(sante(serveur.port()), std::nullopt);
  }
  EXPECT_TRUE(serveur.requetes().empty());
}

TEST_F(EssaiSonde, LaSanteEnvoieLeJetonTelQuelSurSaRoute) {
  poserLeJeton("\n a b;c \n");
  const ServeurFactice serveur(reponseHTTP("200 OK", R"({"version":"1.4.2","carnet":{"terminaux":5}})"));
  EXPECT_EQ(sante(serveur.port()), (Sante{"1.4.2", 5}));
  const auto requete = serveur.requetes().at(0);
  EXPECT_TRUE(requete.starts_with("GET /api/sante HTTP/1.1\r\n"));
  EXPECT_TRUE(requete.contains("\r\nx-keltrove-jeton: a b;c\r\n"));
}

TEST_F(EssaiSonde, LaSanteSeLitSansSEtonner) {
  EXPECT_EQ(santePour(R"({"version": 3})"), (Sante{"?", 0}));
  EXPECT_EQ(santePour(R"({"version": "1.4.2"})"), (Sante{"1.4.2", 0}));
  EXPECT_EQ(santePour("{}"), (Sante{"?", 0}));
  EXPECT_EQ(santePour(R"({"version":"1","carnet":[5]})"), (Sante{"1", 0}));
  EXPECT_EQ(santePour(R"({"version":"1","carnet":{"terminaux":"5"}})"), (Sante{"1", 0}));
  EXPECT_EQ(santePour(R"({"version":"1","carnet":{"terminaux":5.5}})"), (Sante{"1", 0}));
  EXPECT_EQ(santePour(R"({"version":"1","carnet":{"terminaux":1e300}})"), (Sante{"1", 0}));
  EXPECT_EQ(santePour(R"({"version":"1","carnet":{"terminaux":2147483647}})"), (Sante{"1", 2147483647}));
  EXPECT_EQ(santePour(R"({"version":"1","carnet":{"terminaux":-2147483647}})"), (Sante{"1", -2147483647}));
  EXPECT_EQ(santePour(R"({"version":"1","carnet":{"terminaux":2147483648}})"), (Sante{"1", 0}));
  EXPECT_EQ(santePour(R"({"version":"1","carnet":{"terminaux":true}})"), (Sante{"1", 0}));
  EXPECT_EQ(santePour("[]"), std::nullopt);
  EXPECT_EQ(santePour(""), std::nullopt);
  EXPECT_EQ(santePour("{\"version\":\"1\"} x"), std::nullopt);
}

TEST_F(EssaiSonde, UneSanteRefuseeOuMuetteNeDonneRienEnMoinsDeQuatreSecondes) {
  poserLeJeton("abc");
  EXPECT_EQ(sante(ServeurFactice(reponseHTTP("401 Unauthorized", R"({"version":"1"})")).port()),
            std::nullopt);
  const ServeurFactice muet([](const Connexion& c) { c.attendreSonDepart(20); });
  // Le silence se constate au bout de deux secondes, bien avant la limite du tout.
  EXPECT_LT(secondes([&] { EXPECT_EQ(sante(muet.port()), std::nullopt); }), 3.5);
  const ServeurFactice lent([](const Connexion& c) {
    c.envoyer("HTTP/1.1 200 OK\r\nContent-Length: 999\r\n\r\n{");
    while (c.envoyer(" "))
      c.attendreSonDepart(1);
  });
  EXPECT_LT(secondes([&] { EXPECT_EQ(sante(lent.port()), std::nullopt); }), 4.5);
}

TEST_F(EssaiSonde, LeJetonNeSuitAucuneRedirectionVersUneAutreOrigine) {
  poserLeJeton("secret");
  const ServeurFactice autre(reponseHTTP("200 OK", R"({"version":"volee"})"));
  for (const auto* hote : {"127.0.0.1", "localhost"}) {
    const auto vers =
        std::string("Location: http://") + hote + ":" + std::to_string(autre.port()) + "/api/sante\r\n";
    const ServeurFactice serveur(reponseHTTP("302 Found", "", vers));
    EXPECT_EQ(sante(serveur.port()), std::nullopt);
  }
  EXPECT_TRUE(autre.requetes().empty());
}

TEST_F(EssaiSonde, LeJetonSuitUneRedirectionSurPlace) {
  poserLeJeton("secret");
  const ServeurFactice serveur([](const Connexion& c) {
    if (c.requete.starts_with("GET /api/sante/ "))
      c.envoyer(reponseHTTP("200 OK", R"({"version":"2"})"));
    else
      c.envoyer(reponseHTTP("307 Temporary Redirect", "", "Location: /api/sante/\r\n"));
  });
  EXPECT_EQ(sante(serveur.port()), (Sante{"2", 0}));
  EXPECT_EQ(serveur.requetes().size(), 2U);
}

} // namespace
} // namespace keltrove::moteur
