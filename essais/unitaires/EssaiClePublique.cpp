#include "DossierSigne.hpp"
#include "verification/Base64.hpp"
#include "verification/ClePublique.hpp"
#include "verification/OrdreCanonique.hpp"

#include <gtest/gtest.h>

namespace keltrove::verification {
namespace {

TEST(EssaiBase64, DecodeLAlphabetOrdinaireEtSonBourrage) {
  EXPECT_EQ(decoderBase64(""), "");
  EXPECT_EQ(decoderBase64("QQ=="), "A");
  EXPECT_EQ(decoderBase64("QUI="), "AB");
  EXPECT_EQ(decoderBase64("QUJD"), "ABC");
  EXPECT_EQ(decoderBase64("+/+/"), "\xfb\xff\xbf");
}

TEST(EssaiBase64, RefuseToutLeReste) {
  for (const char* texte : {"Q", "QQ", "QQ=", "QQ===", "====", "=", "==", "QQ==QQ==", "Q=QQ", " QQ==",
                            "QQ== ", "QQ==\n", "\nQQ==", "QU\nJD", "QU-D", "QU_D", "QUJé", "Q===", "QUJDQ"})
    EXPECT_EQ(decoderBase64(texte), std::nullopt) << texte;
  EXPECT_EQ(decoderBase64(std::string_view("QUJ\0", 4)), std::nullopt);
}

class EssaiClePublique : public testing::Test {
protected:
  EssaiClePublique() { code.signer(inventaire); }
  bool convient(const std::string& texte) const {
    const auto cle = lireClePublique(texte);
    if (!cle) return false;
    const auto signature = decoderBase64(code.signatureDe(inventaire));
    EXPECT_TRUE(cle->aSigne(inventaire, *signature)) << "une clé lue est la bonne : " << texte;
    return true;
  }
  std::string pem() const {
    // RFC 8410 : douze octets d’en-tête devant la clé nue.
    const auto nue = *decoderBase64(code.cleNue());
    return essais::enBase64(std::string("\x30\x2a\x30\x05\x06\x03\x2b\x65\x70\x03\x21\x00", 12) + nue);
  }
  const std::string inventaire = "{}";
  essais::DossierSigne code;
};

TEST_F(EssaiClePublique, LesDeuxFormesConviennent) {
  EXPECT_TRUE(convient(code.cleNue()));
  EXPECT_TRUE(convient(code.cleNue() + "\n"));
  EXPECT_TRUE(convient("-----BEGIN PUBLIC KEY-----\n" + pem() + "\n-----END PUBLIC KEY-----\n"));
}

TEST_F(EssaiClePublique, LesLignesSeJoignentEtLesVidesTombent) {
  const auto nue = code.cleNue();
  EXPECT_TRUE(convient("\n\n" + nue.substr(0, 7) + "\n\n" + nue.substr(7) + "\n\n"));
  EXPECT_TRUE(convient("-----\n" + nue + "\n------ commentaire"));
}

TEST_F(EssaiClePublique, LesFinsDeLigneDOSLaGatent) {
  EXPECT_FALSE(convient("-----BEGIN PUBLIC KEY-----\r\n" + pem() + "\r\n-----END PUBLIC KEY-----\r\n"));
  EXPECT_FALSE(convient(code.cleNue() + "\r\n"));
  EXPECT_FALSE(convient(code.cleNue() + "\r"));
}

TEST_F(EssaiClePublique, UnRetourChariotEtSonSautNeSeparentRien) {
  // La ligne d’encadrement va jusqu’au premier vrai saut de ligne, et emporte ce qui la touche.
  EXPECT_FALSE(convient("-----BEGIN-----\r\n" + pem() + "\n-----END-----\n"));
  EXPECT_TRUE(convient("-----BEGIN-----\r\nperdu\n" + pem() + "\n-----END-----\n"));
}

TEST_F(EssaiClePublique, NiBlancNiMarqueNiTexteCourt) {
  EXPECT_FALSE(convient(" " + code.cleNue()));
  EXPECT_FALSE(convient(code.cleNue() + " "));
  EXPECT_FALSE(convient("\xEF\xBB\xBF" + code.cleNue()));
  EXPECT_FALSE(convient(""));
  EXPECT_FALSE(convient("-----BEGIN PUBLIC KEY-----\n"));
  EXPECT_FALSE(convient(essais::enBase64(std::string(31, 'k'))));
  EXPECT_FALSE(convient("\xff" + code.cleNue()));
  EXPECT_FALSE(convient("----\n" + code.cleNue())) << "quatre tirets ne font pas un encadrement";
}

TEST_F(EssaiClePublique, UnTiretAccentueNEstPasUnTiret) {
  EXPECT_FALSE(convient("-----\u0301\n" + code.cleNue()));
}

TEST_F(EssaiClePublique, LesTrenteDeuxDerniersOctetsComptent) {
  EXPECT_TRUE(convient(essais::enBase64(std::string(301, 'x') + *decoderBase64(code.cleNue()))));
}

TEST(EssaiOrdreCanonique, EstCeluiDesPointsDeCodeComposes) {
  const std::string compose = "\u00e9";    // é
  const std::string decompose = "e\u0301"; // le même, en deux
  const std::string plan1 = "\U0001F600";  // au-delà de U+FFFF
  const std::string haut = "\uFF5E";       // après les moitiés UTF-16, avant le plan 1
  std::vector<std::string> textes{plan1, haut, "f",   decompose + "b", compose + "a",
                                  "e",   "Z",  "a/b", "a b",           "z"};
  trierSelonLOrdreCanonique(textes);
  EXPECT_EQ(textes, (std::vector<std::string>{"Z", "a b", "a/b", "e", "f", "z", compose + "a",
                                              decompose + "b", haut, plan1}));
  EXPECT_EQ(premierSelonLOrdreCanonique({"z", decompose, "a"}), "a");
}

TEST(EssaiOrdreCanonique, CeQuiNEstPasDeLUTF8SeRangeParSesOctets) {
  std::vector<std::string> textes{"\xff", "a", "\xe9z", "é"};
  trierSelonLOrdreCanonique(textes);
  EXPECT_EQ(textes, (std::vector<std::string>{"a", "é", "\xe9z", "\xff"}));
}

} // namespace
} // namespace keltrove::verification
