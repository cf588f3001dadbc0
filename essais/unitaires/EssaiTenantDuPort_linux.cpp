#include "AutreCompte.hpp"
#include "MaisonTemporaire.hpp"
#include "ServeurFactice.hpp"
#include "moteur/Sonde.hpp"
#include "moteur/TenantDuPort.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

namespace keltrove::moteur {
namespace {

using essais::AutreCompte;
using essais::reponseHTTP;
using essais::ServeurFactice;

TEST(TenantDuPort, PersonneNYEcouteVraimentDoncUnEtranger) {
  EXPECT_EQ(tenantDuPort(essais::portLibre()), Tenant::etranger);
  for (const int impossible : {-1, 0, 65536})
    EXPECT_EQ(tenantDuPort(impossible), Tenant::etranger);
}

TEST(TenantDuPort, NotrePropreServeurEstANous) {
  EXPECT_EQ(tenantDuPort(ServeurFactice("").port()), Tenant::nousOuLAdministrateur);
}

class DevantUnAutreCompte : public testing::Test {
protected:
  static constexpr const char* page = "<meta name=\"keltrove-jeton\" content=\"x\">{\"version\":\"1\"}";

  void SetUp() override {
    if (::geteuid() != 0) GTEST_SKIP() << "prendre un autre compte demande d’être administrateur";
    maison.ecrire(".zelcor/keltrove-jeton", "secret");
  }
  static void attendreQuIlNeSoitPasInterroge(const AutreCompte& serveur, int sonPort) {
    EXPECT_FALSE(cEstBienKeltrove(sonPort));
    EXPECT_EQ(sante(sonPort), std::nullopt);
    EXPECT_EQ(serveur.connexions(), 0);
  }

  essais::MaisonTemporaire maison;
};

TEST_F(DevantUnAutreCompte, SaPageNEstPasLaNotreEtLeJetonNYVaPas) {
  for (const auto* adresse : {"127.0.0.1", "0.0.0.0"}) {
    const AutreCompte serveur(adresse, 0, reponseHTTP("200 OK", page));
    ASSERT_NE(serveur.port(), 0) << adresse;
    attendreQuIlNeSoitPasInterroge(serveur, serveur.port());
  }
}

TEST_F(DevantUnAutreCompte, IlNEnTientQueLAdresseIPv6EtLaNotreNEstPlusCrue) {
  const ServeurFactice nousMemes(reponseHTTP("200 OK", page));
  ASSERT_TRUE(cEstBienKeltrove(nousMemes.port()));
  const AutreCompte serveur("::1", nousMemes.port(), reponseHTTP("200 OK", page));
  if (serveur.port() == 0) GTEST_SKIP() << "cette machine n’a pas d’IPv6";
  attendreQuIlNeSoitPasInterroge(serveur, nousMemes.port());
  EXPECT_EQ(nousMemes.requetes().size(), 1U) << "le jeton n’est plus envoyé à personne sur ce port";
}

} // namespace
} // namespace keltrove::moteur
