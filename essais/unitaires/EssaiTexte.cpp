#include "socle/Texte.hpp"

#include <gtest/gtest.h>

namespace keltrove::socle {
namespace {

using Morceaux = std::vector<std::string>;

TEST(Texte, LUTF8SeReconnaitEtSesContrefaconsNon) {
  for (const auto* valide : {"", "abc", "é", "…", "🙂", "ascii long de plus de huit octets puis é"})
    EXPECT_TRUE(estUTF8(valide)) << valide;
  for (const auto* invalide : {"\x80", "abc\xff", "\xc3", "\xc0\xaf", "\xed\xa0\x80", "\xf4\x90\x80\x80",
                               "dix octets ascii puis \xe9t\xe9"})
    EXPECT_FALSE(estUTF8(invalide));
  EXPECT_TRUE(estUTF8(std::string_view("a\0b", 3)));
}

TEST(Texte, CeQuiNEstPasDeLUTF8EstRemplaceOctetParOctet) {
  EXPECT_EQ(enUTF8(std::string_view("a\0é", 4)), std::string_view("a\0é", 4));
  EXPECT_EQ(enUTF8("\xc3\x28 \xff\xfe é"), "\ufffd( \ufffd\ufffd é");
}

TEST(Texte, LUTF16SeTraduitEtUneMoitieSeuleEstRemplacee) {
  EXPECT_EQ(enUTF8(u""), "");
  EXPECT_EQ(enUTF8(u"aé€😀"), "aé€😀");
  EXPECT_EQ(enUTF8(u"😀a"), "😀a");
  EXPECT_EQ(enUTF8(std::u16string_view(u"a\0b", 3)), std::string("a\0b", 3));
  EXPECT_EQ(enUTF8(std::u16string{u'a', 0xD83D}), "a\xEF\xBF\xBD");
  EXPECT_EQ(enUTF8(std::u16string{0xDE00, u'b'}), "\xEF\xBF\xBD"
                                                  "b");
  EXPECT_EQ(enUTF8(std::u16string{0xD83D, 0xD83D, 0xDE00}), "\xEF\xBF\xBD😀");
  EXPECT_EQ(enUTF8(std::u16string_view(u"😀", 1)), "\xEF\xBF\xBD") << "la suite n’en est pas";
}

TEST(Texte, RognerRetireBlancsEtFinsDeLigneUnicodeDesDeuxBouts) {
  EXPECT_EQ(rogner(" \t\r\n\v\f abc  \n"), "abc");
  EXPECT_EQ(rogner("\u00A0\u2003\u2028\u2029\u0085\u3000abc\u3000\u0085\u2028"), "abc");
  EXPECT_EQ(rogner("a b"), "a b");
  EXPECT_EQ(rogner(" \n "), "");
  EXPECT_EQ(rogner(""), "");
}

TEST(Texte, RognerGardeCeQuiNEstPasUnBlanc) {
  EXPECT_EQ(rogner("\u200Babc\uFEFF"), "\u200Babc\uFEFF");
  EXPECT_EQ(rogner("\xff abc \x80"), "\xff abc \x80");
  EXPECT_EQ(rogner("\x80"), "\x80");
}

TEST(Texte, RognerEspacesGardeLesFinsDeLigne) {
  EXPECT_EQ(rognerEspaces("\t \u00A0abc\u2003\t"), "abc");
  EXPECT_EQ(rognerEspaces("\nabc\r\n"), "\nabc\r\n");
}

TEST(Texte, DecouperGardeOuEcarteLesMorceauxVides) {
  EXPECT_EQ(decouper("a\nb\n", '\n', MorceauxVides::gardes), (Morceaux{"a", "b", ""}));
  EXPECT_EQ(decouper("a\n\nb\n", '\n', MorceauxVides::ecartes), (Morceaux{"a", "b"}));
  EXPECT_EQ(decouper("", '\n', MorceauxVides::gardes), (Morceaux{""}));
  EXPECT_EQ(decouper("", '\n', MorceauxVides::ecartes), Morceaux{});
}

TEST(Texte, JoindreNeMetLeLienQuEntreLesMorceaux) {
  EXPECT_EQ(joindre({}, ", "), "");
  EXPECT_EQ(joindre({"a"}, ", "), "a");
  EXPECT_EQ(joindre({"a", "", "b"}, ", "), "a, , b");
}

} // namespace
} // namespace keltrove::socle
