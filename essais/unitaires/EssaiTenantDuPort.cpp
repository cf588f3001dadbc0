#include "MaisonTemporaire.hpp"
#include "moteur/TenantDuPort.hpp"

#include <bit>
#include <cstring>

#include <arpa/inet.h>
#include <fmt/format.h>
#include <gtest/gtest.h>

namespace keltrove::moteur {
namespace {

constexpr uid_t nous = 1000;
constexpr uid_t autrui = 1001;
constexpr int port = 7777;

constexpr const char* enTete =
    "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  timeout inode\n";

AdresseIP adresseIP(const std::string& texte) {
  AdresseIP adresse{};
  EXPECT_EQ(::inet_pton(AF_INET6, texte.c_str(), adresse.data()), 1) << texte;
  return adresse;
}

// L’adresse comme le noyau l’écrit : mot par mot, chacun lu comme un nombre de cette machine.
std::string commeLeNoyau(const std::string& texte) {
  std::string ecrite;
  const bool courte = !texte.contains(':');
  const auto adresse = adresseIP(courte ? "::ffff:" + texte : texte);
  for (std::size_t debut = courte ? 12 : 0; debut < adresse.size(); debut += 4) {
    std::uint32_t mot = 0;
    std::memcpy(&mot, adresse.data() + debut, sizeof mot);
    ecrite += fmt::format("{:08X}", mot);
  }
  return ecrite;
}

std::string ligne(const std::string& adresse, uid_t compte, int sonPort = port, const char* etat = "0A") {
  const auto locale = commeLeNoyau(adresse);
  return fmt::format("   0: {}:{:04X} {}:0000 {} 00000000:00000000 00:00000000 00000000 {:5}        0 4321 1 "
                     "0000000000000000 100 0 0 10 0\n",
                     locale, sonPort, std::string(locale.size(), '0'), etat, compte);
}

Tenant tenant(const std::string& lignes) {
  return tenantParmi(lireTableDePrises(enTete + lignes), port, nous);
}

TEST(TablesDePrises, UneVraieLigneDonneSonAdresseSonPortSonCompteEtSonNumero) {
  if constexpr (std::endian::native != std::endian::little)
    GTEST_SKIP() << "lignes d’une machine petit-boutiste";
  const auto prises = lireTableDePrises(
      "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  timeout inode\n"
      "   0: 0100007F:1E61 00000000:0000 0A 00000000:00000000 00:00000000 00000000  1000        0 25911 1 "
      "0000000000000000 100 0 0 10 0\n"
      "   1: 00000000000000000000000001000000:1E61 00000000000000000000000000000000:0000 0A "
      "00000000:00000000 00:00000000 00000000 65534        0 25912 1 0000000000000000 100 0 0 10 0\n"
      "   2: 0000000000000000FFFF00000100007F:0050 00000000000000000000000000000000:0000 0A "
      "00000000:00000000 00:00000000 00000000     0        0 25913 1 0000000000000000 100 0 0 10 0\n");
  EXPECT_EQ(prises, (std::vector<PriseALEcoute>{{adresseIP("::ffff:127.0.0.1"), 7777, 1000, "25911"},
                                                {adresseIP("::1"), 7777, 65534, "25912"},
                                                {adresseIP("::ffff:127.0.0.1"), 80, 0, "25913"}}));
}

TEST(TablesDePrises, UnePriseQuiNEcoutePasOuUneLigneIllisibleEstEcartee) {
  const auto bonne = ligne("127.0.0.1", nous);
  const auto sans = [&](std::string_view morceau, std::string_view autre) {
    auto abimee = bonne;
    abimee.replace(abimee.find(morceau), morceau.size(), autre);
    EXPECT_NE(abimee, bonne);
    return lireTableDePrises(enTete + abimee + bonne).size();
  };
  ASSERT_EQ(lireTableDePrises(enTete + bonne + bonne).size(), 2U);
  const auto locale = commeLeNoyau("127.0.0.1");
  EXPECT_EQ(sans(" 0A ", " 01 "), 1U) << "une connexion établie";
  EXPECT_EQ(sans(" 0A ", " 06 "), 1U) << "une connexion qui finit";
  EXPECT_EQ(sans(locale, locale.substr(1)), 1U) << "une adresse trop courte";
  EXPECT_EQ(sans(locale, locale + locale), 1U) << "une adresse de deux mots";
  EXPECT_EQ(sans(locale, "0100OO7F"), 1U) << "une adresse qui n’est pas un nombre";
  EXPECT_EQ(sans(":1E61", ""), 1U) << "sans port";
  EXPECT_EQ(sans(":1E61", ":0000"), 1U) << "un port nul";
  EXPECT_EQ(sans(":1E61", ":11E61"), 1U) << "un port trop grand";
  EXPECT_EQ(sans(":1E61", ":-001"), 1U) << "un port négatif";
  EXPECT_EQ(sans("  1000 ", "  moi "), 1U) << "un compte qui n’est pas un numéro";
  EXPECT_EQ(sans("  1000 ", "  -1 "), 1U) << "un compte négatif";
  EXPECT_EQ(lireTableDePrises(bonne.substr(0, bonne.find(" 4321"))), std::vector<PriseALEcoute>{})
      << "coupée";
  for (std::size_t fin = 0; fin < bonne.find(" 4321"); ++fin)
    EXPECT_EQ(lireTableDePrises(bonne.substr(0, fin)), std::vector<PriseALEcoute>{}) << fin;
  EXPECT_EQ(lireTableDePrises(""), std::vector<PriseALEcoute>{});
  EXPECT_EQ(lireTableDePrises("\n \n\xff\n"), std::vector<PriseALEcoute>{});
}

TEST(TablesDePrises, LesDeuxTablesSontLuesEtUnNoyauSansIPv6NAQueLaPremiere) {
  const essais::MaisonTemporaire maison;
  maison.ecrire("net/tcp", enTete + ligne("127.0.0.1", nous));
  ASSERT_TRUE(lireTablesDePrises(maison.chemin("net")));
  EXPECT_EQ(lireTablesDePrises(maison.chemin("net"))->size(), 1U);
  maison.ecrire("net/tcp6", enTete + ligne("::1", autrui));
  EXPECT_EQ(lireTablesDePrises(maison.chemin("net"))->size(), 2U);
}

TEST(TablesDePrises, UneTableIllisibleEstUnEchec) {
  const essais::MaisonTemporaire maison;
  EXPECT_EQ(lireTablesDePrises(maison.chemin("net")), std::nullopt) << "aucune table";
  maison.ecrire("net/tcp6", enTete + ligne("::1", nous));
  EXPECT_EQ(lireTablesDePrises(maison.chemin("net")), std::nullopt) << "sans la table IPv4";
  maison.ecrire("net/tcp", enTete);
  EXPECT_TRUE(lireTablesDePrises(maison.chemin("net")));
  maison.effacer("net/tcp6");
  maison.ecrire("net/tcp6/dossier", "");
  EXPECT_EQ(lireTablesDePrises(maison.chemin("net")), std::nullopt)
      << "un dossier à la place de la table IPv6";
}

TEST(TenantDuPort, NousEtLAdministrateurSommesChezNous) {
  for (const auto* adresse : {"127.0.0.1", "0.0.0.0", "::1", "::", "::ffff:127.0.0.1", "::ffff:0.0.0.0"}) {
    EXPECT_EQ(tenant(ligne(adresse, nous)), Tenant::nousOuLAdministrateur) << adresse;
    EXPECT_EQ(tenant(ligne(adresse, 0)), Tenant::nousOuLAdministrateur) << adresse;
    EXPECT_EQ(tenant(ligne(adresse, autrui)), Tenant::etranger) << adresse;
  }
}

TEST(TenantDuPort, UnSeulAutreCompteFaitUnEtranger) {
  EXPECT_EQ(tenant(ligne("127.0.0.1", nous) + ligne("::1", autrui)), Tenant::etranger);
  EXPECT_EQ(tenant(ligne("127.0.0.1", autrui) + ligne("::1", nous)), Tenant::etranger);
  EXPECT_EQ(tenant(ligne("127.0.0.1", nous) + ligne("::1", 0)), Tenant::nousOuLAdministrateur);
}

TEST(TenantDuPort, UneAutreAdresseUnAutrePortOuUneConnexionNeComptentPas) {
  const auto ailleurs = ligne("192.168.1.5", autrui) + ligne("127.0.0.2", autrui) + ligne("fe80::1", autrui) +
                        ligne("::ffff:10.0.0.1", autrui) + ligne("127.0.0.1", autrui, port + 1) +
                        ligne("127.0.0.1", autrui, port, "01");
  EXPECT_EQ(tenant(ailleurs + ligne("127.0.0.1", nous)), Tenant::nousOuLAdministrateur);
  EXPECT_EQ(tenant(ligne("192.168.1.5", nous) + ligne("127.0.0.1", nous, port, "06")), Tenant::etranger)
      << "personne n’y est joignable";
}

TEST(TenantDuPort, PersonneALEcouteEstUnEtranger) {
  EXPECT_EQ(tenant(""), Tenant::etranger);
}

} // namespace
} // namespace keltrove::moteur
