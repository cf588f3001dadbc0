#include "bureau/cocoa/MessageDeWebKit.hpp"

#include "bureau/cocoa/Textes.hpp"

namespace keltrove::bureau {

pont::MessageDeLaPage lireLeMessage(id corps) {
  if ([corps isKindOfClass:NSString.class]) return enUTF8(corps);
  if (![corps isKindOfClass:NSDictionary.class]) return pont::Illisible{};
  NSDictionary* membres = corps;
  pont::ObjetDeLaPage objet{.textes = {}, .forme = enUTF8(membres.description)};
  for (id nom in membres) {
    id valeur = membres[nom];
    if ([nom isKindOfClass:NSString.class] && [valeur isKindOfClass:NSString.class])
      objet.textes[enUTF8(nom)] = enUTF8(valeur);
  }
  return objet;
}

} // namespace keltrove::bureau
