#include "AutreCompte.hpp"
#include "MaisonTemporaire.hpp"
#include "ServeurFactice.hpp"
#include "moteur/SockDiag_linux.hpp"
#include "moteur/Sonde.hpp"
#include "moteur/TenantDuPort.hpp"
#include "socle/Descripteur.hpp"

#include <algorithm>

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
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

TEST(TenantDuPort, LeNoyauDitLaMemeChoseDesDeuxFacons) {
  const ServeurFactice ici("");
  const auto tables = lireTablesDePrises("/proc/self/net");
  const auto demandees = ecoutesParSockDiag();
  ASSERT_TRUE(tables);
  ASSERT_TRUE(demandees);
  const auto celleDIci = [&](const std::vector<PriseALEcoute>& prises) {
    return *std::ranges::find(prises, ici.port(), &PriseALEcoute::port);
  };
  EXPECT_EQ(celleDIci(*demandees), celleDIci(*tables));
}

// Une adresse par forme que peut prendre l’écoute de localhost.
TEST(TenantDuPort, ChaqueAdresseSeLitPareilDesDeuxFacons) {
  for (const auto* texte : {"::1", "::", "::ffff:127.0.0.1", "::ffff:0.0.0.0"}) {
    const socle::Descripteur prise(::socket(AF_INET6, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in6 adresse{};
    adresse.sin6_family = AF_INET6;
    ASSERT_EQ(::inet_pton(AF_INET6, texte, &adresse.sin6_addr), 1);
    const int non = 0;
    ::setsockopt(prise.numero(), IPPROTO_IPV6, IPV6_V6ONLY, &non, sizeof non);
    if (::bind(prise.numero(), reinterpret_cast<const sockaddr*>(&adresse), sizeof adresse) != 0)
      GTEST_SKIP() << "cette machine n’a pas d’IPv6";
    ASSERT_EQ(::listen(prise.numero(), 1), 0);
    socklen_t taille = sizeof adresse;
    ::getsockname(prise.numero(), reinterpret_cast<sockaddr*>(&adresse), &taille);
    const int celui = ntohs(adresse.sin6_port);
    const auto celleDuPort = [&](const auto& prises) {
      return *std::ranges::find(prises, celui, &PriseALEcoute::port);
    };
    EXPECT_EQ(celleDuPort(*ecoutesParSockDiag()), celleDuPort(*lireTablesDePrises("/proc/self/net")))
        << texte;
    EXPECT_EQ(tenantDuPort(celui), Tenant::nousOuLAdministrateur) << texte;
  }
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
