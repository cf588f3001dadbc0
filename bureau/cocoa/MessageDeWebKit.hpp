// MessageDeWebKit : ce que la page a écrit, tel que WebKit le donne : un objet d’Objective-C de l’un des
// types de JavaScript. Sans état.
#pragma once

#include "pont/MessageDeLaPage.hpp"

#import <Foundation/Foundation.h>

namespace keltrove::bureau {

pont::MessageDeLaPage lireLeMessage(id corps);

} // namespace keltrove::bureau
