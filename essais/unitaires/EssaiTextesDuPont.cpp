#include "pont/EnJavaScript.hpp"
#include "pont/MessageDeLaPage.hpp"
#include "pont/TexteCourt.hpp"
#include "socle/Identifiant.hpp"
#include "socle/Texte.hpp"

#include <regex>
#include <set>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace keltrove::pont {
namespace {

using nlohmann::json;

std::string repeter(const std::string& texte, int fois) {
  std::string repete;
  for (int i = 0; i < fois; ++i)
    repete += texte;
  return repete;
}

const std::string famille = "👨‍👩‍👧‍👦";
const std::string drapeau = "🇫🇷";
const std::string accents = "e\u0301\u0302\u0303\u0304\u0305";
const std::string syllabe = "\u1112\u1161\u11ab"; // 한, en trois jamos
const std::string peau = "👍🏽";

TEST(EssaiTexteCourt, CeQuiManqueDonneLeTexteParDefaut) {
  EXPECT_EQ(texteCourt(std::nullopt, "défaut", 80), "défaut");
}

TEST(EssaiTexteCourt, CeQuiEstBlancAussi) {
  for (const char* blanc : {"", "   ", "\t\n\r\n", "\u00a0\u2003\u2028\u0085"})
    EXPECT_EQ(texteCourt(blanc, "défaut", 80), "défaut");
}

TEST(EssaiTexteCourt, LesBlancsDesBoutsTombent) {
  EXPECT_EQ(texteCourt("\n  a b \t", "défaut", 80), "a b");
}

TEST(EssaiTexteCourt, JusquAuMaximumRienNEstCoupe) {
  EXPECT_EQ(texteCourt(repeter("é", 80), "", 80), repeter("é", 80));
  EXPECT_EQ(texteCourt("  " + repeter("é", 80) + "  ", "", 80), repeter("é", 80));
}

TEST(EssaiTexteCourt, AuDelaLaCoupureCompteDansLeMaximum) {
  EXPECT_EQ(texteCourt(repeter("é", 81), "", 80), repeter("é", 79) + "…");
  EXPECT_EQ(texteCourt(repeter("é", 100), "", 80), repeter("é", 79) + "…");
}

TEST(EssaiTexteCourt, UnBlancJusteAvantLaCoupureReste) {
  EXPECT_EQ(texteCourt("abc defgh", "", 5), "abc …");
}

TEST(EssaiTexteCourt, UnCaracterePercuCompteUnEtNEstJamaisCoupe) {
  for (const auto& caractere : {famille, drapeau, accents, syllabe, peau, std::string("\r\n")}) {
    const auto texte = "[" + repeter(caractere, 78) + "]";
    EXPECT_EQ(texteCourt(texte, "", 80), texte);
    EXPECT_EQ(texteCourt("a" + texte, "", 80), "a[" + repeter(caractere, 77) + "…");
  }
}

TEST(EssaiPremiersCaracteres, DeuxDrapeauxDeSuiteFontDeuxCaracteres) {
  EXPECT_EQ(socle::premiersCaracteres(drapeau + drapeau + "a", 1), drapeau);
  EXPECT_EQ(socle::premiersCaracteres(drapeau + drapeau + "a", 2), drapeau + drapeau);
}

TEST(EssaiPremiersCaracteres, ZeroNeRendRienEtUnTexteCourtToutEntier) {
  EXPECT_EQ(socle::premiersCaracteres("abc", 0), "");
  EXPECT_EQ(socle::premiersCaracteres("abc", 9), "abc");
  EXPECT_EQ(socle::premiersCaracteres("", 3), "");
}

TEST(EssaiEnJavaScript, ProtegeGuillemetsBarresEtBarresInverses) {
  EXPECT_EQ(enJavaScript("a\"\\/"), R"("a\"\\\/")");
  EXPECT_EQ(enJavaScript("a\"\\/").size(), 9U);
  EXPECT_EQ(enJavaScript(""), "\"\"");
}

TEST(EssaiEnJavaScript, ProtegeLesCommandesEtGardeLeReste) {
  EXPECT_EQ(enJavaScript("é👍\n\x01"), "\"é👍\\n\\u0001\"");
  EXPECT_EQ(enJavaScript("</script>"), "\"<\\/script>\"");
  EXPECT_EQ(enJavaScript(std::string_view("a\0b", 3)), "\"a\\u0000b\"");
}

TEST(EssaiEnJavaScript, CeQuiNEstPasDeLUTF8DonneLeTexteVide) {
  EXPECT_EQ(enJavaScript("a\xff"), "\"\"");
}

TEST(EssaiEnJavaScript, ResteDuJSONQuiSeRelit) {
  for (const std::string texte : {"a/b\\/\"", "\\\\//", "\u2028", "\t\b\f"})
    EXPECT_EQ(json::parse(enJavaScript(texte)), texte);
}

std::map<std::string, std::string> textesDe(const std::string& corps) {
  return std::get<ObjetDeLaPage>(lireLeMessage(corps)).textes;
}
using Textes = std::map<std::string, std::string>;

TEST(EssaiMessageDeLaPage, UnObjetNEnGardeQueLesTextesEtSaForme) {
  const std::string corps = R"({"a":"b","n":1,"v":null,"d":{"e":"f"},"l":["m"]})";
  EXPECT_EQ(lireLeMessage(corps), MessageDeLaPage(ObjetDeLaPage{{{"a", "b"}}, corps}));
  EXPECT_EQ(std::get<ObjetDeLaPage>(lireLeMessage(corps)).texte("a"), "b");
  EXPECT_EQ(std::get<ObjetDeLaPage>(lireLeMessage(corps)).texte("n"), std::nullopt);
}

TEST(EssaiMessageDeLaPage, UnTexteSeulEstSonPropreMessage) {
  EXPECT_EQ(lireLeMessage("\"texte\""), MessageDeLaPage("texte"));
}

TEST(EssaiMessageDeLaPage, RienDAutreNEstLisible) {
  for (const char* corps : {"[1]", "12", "null", "", "{\"a\":1} suite", "{", "{\"a\":\"b\"} suite"})
    EXPECT_EQ(lireLeMessage(corps), MessageDeLaPage(Illisible{})) << corps;
  EXPECT_EQ(lireLeMessage(std::nullopt), MessageDeLaPage(Illisible{}));
}

TEST(EssaiMessageDeLaPage, UneMoitieDeCaractereEstRemplacee) {
  EXPECT_EQ(textesDe(R"({"a":"x\ud83dy\udc4d"})"), (Textes{{"a", "x\ufffdy\ufffd"}}));
  EXPECT_EQ(textesDe(R"({"a":"\ud83d\ud83d\udc4d"})"), (Textes{{"a", "\ufffd👍"}}));
  EXPECT_EQ(textesDe(R"({"a":"\ud83d"})"), (Textes{{"a", "\ufffd"}}));
}

TEST(EssaiMessageDeLaPage, LaPremiereEtLaDerniereDeChaqueMoitieEnSont) {
  for (const char* moitie : {"\\ud800", "\\udbff", "\\udc00", "\\udfff"})
    EXPECT_EQ(textesDe("{\"a\":\"" + std::string(moitie) + "\"}"), (Textes{{"a", "\ufffd"}})) << moitie;
  EXPECT_EQ(textesDe(R"({"a":"\ud800\udc00\udbff\udfff"})"), (Textes{{"a", "\U00010000\U0010ffff"}}));
  EXPECT_EQ(textesDe(R"({"a":"\ud7ff\ue000"})"), (Textes{{"a", "\ud7ff\ue000"}}));
}

TEST(EssaiMessageDeLaPage, DesLettresQuiRessemblentAUneMoitieRestent) {
  EXPECT_EQ(textesDe(R"({"a":"xxd83d et xxde00"})"), (Textes{{"a", "xxd83d et xxde00"}}));
}

TEST(EssaiMessageDeLaPage, UneBarreInverseDuTexteNEstPasUnEchappement) {
  EXPECT_EQ(textesDe(R"({"a":"\\ud83d\\"})"), (Textes{{"a", "\\ud83d\\"}}));
}

TEST(EssaiMessageDeLaPage, UnImbriquementDemesureNArreteRien) {
  EXPECT_EQ(lireLeMessage("{\"a\":" + repeter("[", 200000)), MessageDeLaPage(Illisible{}));
  EXPECT_EQ(textesDe("{\"titre\":" + repeter("[", 100000) + repeter("]", 100000) + "}"), Textes{});
}

TEST(EssaiIdentifiant, EstUnUUIDDeHasardToujoursNeuf) {
  const std::regex forme("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
  std::set<std::string> vus;
  for (int i = 0; i < 1000; ++i) {
    const auto identifiant = socle::identifiantAuHasard();
    EXPECT_TRUE(std::regex_match(identifiant, forme)) << identifiant;
    vus.insert(identifiant);
  }
  EXPECT_EQ(vus.size(), 1000U);
}

} // namespace
} // namespace keltrove::pont
