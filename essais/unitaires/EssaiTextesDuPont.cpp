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

TEST(EssaiTexteCourt, CeQuiManqueOuNEstPasUnTexteDonneLeTexteParDefaut) {
  for (const json& valeur :
       {json(), json(12), json(true), json::array({"a"}), json::object({{"a", "b"}}), json(1.5)})
    EXPECT_EQ(texteCourt(valeur, "défaut", 80), "défaut") << valeur;
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

TEST(EssaiMessageDeLaPage, SeulUnObjetEnEstUn) {
  EXPECT_EQ(lireLeMessage("{\"a\":1}"), json({{"a", 1}}));
  for (const char* corps :
       {"[1]", "\"texte\"", "12", "null", "", "{\"a\":1} suite", "{", "\"2026-11-21T00:00:00.000Z\""})
    EXPECT_TRUE(lireLeMessage(corps).is_null()) << corps;
  EXPECT_TRUE(lireLeMessage(std::nullopt).is_null());
}

TEST(EssaiMessageDeLaPage, UneMoitieDeCaractereEstRemplacee) {
  EXPECT_EQ(lireLeMessage(R"({"a":"x\ud83dy\udc4d"})"), json({{"a", "x\ufffdy\ufffd"}}));
  EXPECT_EQ(lireLeMessage(R"({"a":"\ud83d\ud83d\udc4d"})"), json({{"a", "\ufffd👍"}}));
  EXPECT_EQ(lireLeMessage(R"({"a":"\ud83d"})"), json({{"a", "\ufffd"}}));
}

TEST(EssaiMessageDeLaPage, LaPremiereEtLaDerniereDeChaqueMoitieEnSont) {
  for (const char* moitie : {"\\ud800", "\\udbff", "\\udc00", "\\udfff"})
    EXPECT_EQ(lireLeMessage("{\"a\":\"" + std::string(moitie) + "\"}"), json({{"a", "\ufffd"}})) << moitie;
  EXPECT_EQ(lireLeMessage(R"({"a":"\ud800\udc00\udbff\udfff"})"), json({{"a", "\U00010000\U0010ffff"}}));
  EXPECT_EQ(lireLeMessage(R"({"a":"\ud7ff\ue000"})"), json({{"a", "\ud7ff\ue000"}}));
}

TEST(EssaiMessageDeLaPage, DesLettresQuiRessemblentAUneMoitieRestent) {
  EXPECT_EQ(lireLeMessage(R"({"a":"xxd83d et xxde00"})"), json({{"a", "xxd83d et xxde00"}}));
}

TEST(EssaiMessageDeLaPage, UneBarreInverseDuTexteNEstPasUnEchappement) {
  EXPECT_EQ(lireLeMessage(R"({"a":"\\ud83d\\"})"), json({{"a", "\\ud83d\\"}}));
}

TEST(EssaiMessageDeLaPage, UnImbriquementDemesureNArreteRien) {
  EXPECT_TRUE(lireLeMessage("{\"a\":" + repeter("[", 200000)).is_null());
  EXPECT_TRUE(lireLeMessage("{\"titre\":" + repeter("[", 100000) + repeter("]", 100000) + "}").is_object());
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
