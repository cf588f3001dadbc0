#include "bureau/cocoa/Textes.hpp"

#include "socle/Texte.hpp"

namespace keltrove::bureau {

NSString* enNSString(std::string_view texte) {
  const auto valide = socle::enUTF8(texte);
  return [[NSString alloc] initWithBytes:valide.data() length:valide.size() encoding:NSUTF8StringEncoding];
}

std::string enUTF8(NSString* texte) {
  std::u16string unites(texte.length, u'\0');
  [texte getCharacters:reinterpret_cast<unichar*>(unites.data()) range:NSMakeRange(0, unites.size())];
  return socle::enUTF8(unites);
}

} // namespace keltrove::bureau
