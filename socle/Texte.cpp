#include "socle/Texte.hpp"

#include <array>
#include <cstdint>
#include <cstring>

#include <utf8proc.h>

namespace keltrove::socle {
namespace {

struct Caractere {
  std::int32_t point = -1; // -1 : octet qui ne commence aucun caractère valide
  std::size_t octets = 1;
};

Caractere premier(std::string_view texte) {
  utf8proc_int32_t point = -1;
  const auto* debut = reinterpret_cast<const utf8proc_uint8_t*>(texte.data());
  const auto lus = utf8proc_iterate(debut, static_cast<utf8proc_ssize_t>(texte.size()), &point);
  return lus > 0 ? Caractere{point, static_cast<std::size_t>(lus)} : Caractere{};
}

Caractere dernier(std::string_view texte) {
  auto debut = texte.size() - 1;
  while (debut > 0 && texte.size() - debut < 4 && (static_cast<unsigned char>(texte[debut]) & 0xC0) == 0x80)
    --debut;
  const auto lu = premier(texte.substr(debut));
  return debut + lu.octets == texte.size() ? lu : Caractere{};
}

bool estEspace(std::int32_t point) {
  return point == '\t' || (point >= 0 && utf8proc_category(point) == UTF8PROC_CATEGORY_ZS);
}

bool estBlanc(std::int32_t point) {
  if ((point >= 0x09 && point <= 0x0D) || point == 0x85) return true;
  if (point < 0) return false;
  const auto categorie = utf8proc_category(point);
  return categorie >= UTF8PROC_CATEGORY_ZS && categorie <= UTF8PROC_CATEGORY_ZP;
}

template <typename Predicat>
std::string_view rognerSelon(std::string_view texte, Predicat aRetirer) {
  while (!texte.empty()) {
    const auto lu = premier(texte);
    if (!aRetirer(lu.point)) break;
    texte.remove_prefix(lu.octets);
  }
  while (!texte.empty()) {
    const auto lu = dernier(texte);
    if (!aRetirer(lu.point)) break;
    texte.remove_suffix(lu.octets);
  }
  return texte;
}

// La sortie d’un serveur est presque toujours de l’ASCII : huit octets à la fois avant d’examiner de près.
std::size_t longueurASCII(std::string_view texte) {
  std::size_t i = 0;
  for (std::uint64_t huit = 0; i + sizeof huit <= texte.size(); i += sizeof huit) {
    std::memcpy(&huit, texte.data() + i, sizeof huit);
    if (huit & 0x8080808080808080U) break;
  }
  while (i < texte.size() && static_cast<unsigned char>(texte[i]) < 0x80)
    ++i;
  return i;
}

} // namespace

bool estUTF8(std::string_view octets) {
  for (octets.remove_prefix(longueurASCII(octets)); !octets.empty();
       octets.remove_prefix(longueurASCII(octets))) {
    const auto lu = premier(octets);
    if (lu.point < 0) return false;
    octets.remove_prefix(lu.octets);
  }
  return true;
}

std::string enUTF8(std::string_view octets) {
  std::string texte;
  while (!octets.empty()) {
    const auto lu = premier(octets);
    texte += lu.point < 0 ? std::string_view("\ufffd") : octets.substr(0, lu.octets);
    octets.remove_prefix(lu.octets);
  }
  return texte;
}

std::string enUTF8(std::u16string_view unites) {
  constexpr std::int32_t remplacement = 0xFFFD;
  const auto estHaute = [](char16_t unite) { return (unite & 0xFC00) == 0xD800; };
  const auto estBasse = [](char16_t unite) { return (unite & 0xFC00) == 0xDC00; };
  std::string texte;
  for (std::size_t i = 0; i < unites.size(); ++i) {
    std::int32_t point = unites[i];
    if (estHaute(unites[i]) && i + 1 < unites.size() && estBasse(unites[i + 1]))
      point = 0x10000 + ((point - 0xD800) << 10) + (unites[++i] - 0xDC00);
    else if (estHaute(unites[i]) || estBasse(unites[i]))
      point = remplacement;
    std::array<utf8proc_uint8_t, 4> octets{};
    const auto nombre = utf8proc_encode_char(point, octets.data());
    texte.append(octets.begin(), octets.begin() + nombre);
  }
  return texte;
}

std::string_view rogner(std::string_view texte) {
  return rognerSelon(texte, estBlanc);
}

std::string_view rognerEspaces(std::string_view texte) {
  return rognerSelon(texte, estEspace);
}

std::string_view premiersCaracteres(std::string_view texte, std::size_t nombre) {
  std::int32_t precedent = -1;
  std::int32_t etat = 0;
  std::size_t vus = 0;
  for (std::size_t i = 0; i < texte.size();) {
    const auto lu = premier(texte.substr(i));
    const bool nouveau = precedent < 0 || utf8proc_grapheme_break_stateful(precedent, lu.point, &etat);
    if (nouveau && vus++ == nombre) return texte.substr(0, i);
    precedent = lu.point;
    i += lu.octets;
  }
  return texte;
}

std::vector<std::string> decouper(std::string_view texte, char separateur, MorceauxVides vides) {
  std::vector<std::string> morceaux;
  for (std::size_t debut = 0; debut <= texte.size();) {
    const auto fin = std::min(texte.find(separateur, debut), texte.size());
    if (fin > debut || vides == MorceauxVides::gardes)
      morceaux.emplace_back(texte.substr(debut, fin - debut));
    debut = fin + 1;
  }
  return morceaux;
}

std::string texteDuSysteme(std::errc erreur) {
  return std::make_error_code(erreur).message();
}

std::string joindre(const std::vector<std::string>& morceaux, std::string_view lien) {
  std::string texte;
  for (const auto& morceau : morceaux) {
    if (&morceau != &morceaux.front()) texte += lien;
    texte += morceau;
  }
  return texte;
}

} // namespace keltrove::socle
