#include "ServeurFactice.hpp"
#include "socle/RequeteHTTP.hpp"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace keltrove::socle {
namespace {

TEST(EssaiRequeteHTTP, UneReponseLenteMaisVivanteArriveEntiere) {
  const essais::ServeurFactice serveur([](const essais::Connexion& c) {
    c.envoyer("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n");
    for (int i = 0; i < 5; ++i) {
      c.attendreSonDepart(0.8);
      c.envoyer("x");
    }
  });
  // Quatre secondes en tout, mais jamais deux de suite sans rien.
  const auto reponse = obtenir({.url = fmt::format("http://127.0.0.1:{}/", serveur.port()),
                                .entetes = {},
                                .inactiviteMaximale = 2,
                                .dureeMaximale = 60});
  ASSERT_TRUE(reponse);
  EXPECT_EQ(reponse->corps, "xxxxx");
}

TEST(EssaiRequeteHTTP, CinqStatutsMenentAilleursLesAutresSontLaReponse) {
  for (const int statut : {200, 201, 300, 301, 302, 303, 304, 305, 306, 307, 308, 404}) {
    const essais::ServeurFactice serveur([statut](const essais::Connexion& c) {
      c.envoyer(c.requete.starts_with("GET /suite ")
                    ? essais::reponseHTTP("200 OK", "la suite")
                    : essais::reponseHTTP(fmt::format("{} Ici", statut), "", "Location: /suite\r\n"));
    });
    const auto reponse = obtenir({.url = fmt::format("http://127.0.0.1:{}/", serveur.port()),
                                  .entetes = {},
                                  .inactiviteMaximale = 20,
                                  .dureeMaximale = 20});
    const bool suivie = statut == 301 || statut == 302 || statut == 303 || statut == 307 || statut == 308;
    ASSERT_TRUE(reponse) << statut;
    EXPECT_EQ(reponse->statut, suivie ? 200 : statut);
    EXPECT_EQ(reponse->corps, suivie ? "la suite" : "") << statut;
  }
}

TEST(EssaiRequeteHTTP, UnTemoinSuitSesRedirectionsEtNeLeurSurvitPas) {
  const essais::ServeurFactice serveur([](const essais::Connexion& c) {
    c.envoyer(c.requete.starts_with("GET /suite ")
                  ? essais::reponseHTTP("200 OK", c.requete.contains("Cookie: a=b") ? "avec" : "sans")
                  : essais::reponseHTTP("302 Ici", "", "Location: /suite\r\nSet-Cookie: a=b\r\n"));
  });
  const auto demander = [&](const char* chemin) {
    const auto reponse = obtenir({.url = fmt::format("http://127.0.0.1:{}{}", serveur.port(), chemin),
                                  .entetes = {},
                                  .inactiviteMaximale = 20,
                                  .dureeMaximale = 20});
    return reponse ? reponse->corps : "rien";
  };
  EXPECT_EQ(demander("/"), "avec");
  EXPECT_EQ(demander("/suite"), "sans");
}

} // namespace
} // namespace keltrove::socle
