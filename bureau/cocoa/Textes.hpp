// Textes : du comportement, en UTF-8, à ceux du système, et retour. Rien n’échoue : ce qui n’est pas du texte
// devient U+FFFD. Utilisables depuis tout fil.
#pragma once

#include <string>
#include <string_view>

#import <Foundation/Foundation.h>

namespace keltrove::bureau {

NSString* enNSString(std::string_view texte);
// Vide pour nil.
std::string enUTF8(NSString* texte);

} // namespace keltrove::bureau
