// Texte : les quelques opérations sur du texte UTF-8 dont le comportement a besoin.
//
// Un texte est une suite d’octets ; aucune opération ne suppose qu’il est en UTF-8 valide, sauf mention.
// Les classes de caractères sont celles d’Unicode (utf8proc), jamais celles de la langue du processus.
// Les `string_view` rendus sont des vues sur le texte reçu, et ne lui survivent pas. Sans état :
// utilisable depuis tout fil.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace keltrove::socle {

bool estUTF8(std::string_view octets);

// Les mêmes octets s’ils sont en UTF-8 ; sinon, chaque octet fautif devient U+FFFD.
std::string enUTF8(std::string_view octets);
// De l’UTF-16 de la machine ; une moitié de caractère seule devient U+FFFD.
std::string enUTF8(std::u16string_view unites);

// Retire des deux bouts les blancs et les fins de ligne : catégories Z*, U+0009 à U+000D, U+0085.
std::string_view rogner(std::string_view texte);

// Retire des deux bouts les espaces (catégorie Zs) et la tabulation, mais aucune fin de ligne.
std::string_view rognerEspaces(std::string_view texte);

// Les premiers caractères, tels qu’on les perçoit (groupes de graphèmes étendus, UAX 29) : une famille
// d’emojis, un drapeau, une lettre et ses accents comptent pour un. Le texte entier s’il n’en a pas
// davantage. Doit être en UTF-8.
std::string_view premiersCaracteres(std::string_view texte, std::size_t nombre);

// Découpe à chaque séparateur ; les morceaux vides sont gardés ou non. Gardés, il y a toujours un morceau de
// plus que de séparateurs.
enum class MorceauxVides { gardes, ecartes };
std::vector<std::string> decouper(std::string_view texte, char separateur, MorceauxVides vides);

// Ce que le système dit d’une de ses erreurs, dans la langue du processus.
std::string texteDuSysteme(std::errc erreur);

// L’inverse : le lien entre deux morceaux, jamais au bout.
std::string joindre(const std::vector<std::string>& morceaux, std::string_view lien);

} // namespace keltrove::socle
