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

} // namespace
} // namespace keltrove::socle
