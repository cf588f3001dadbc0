#include "bureau/cocoa/AProposCocoa.hpp"

#include "bureau/cocoa/Textes.hpp"
#include "fenetre/APropos.hpp"

#import <AppKit/AppKit.h>

namespace keltrove::bureau {

namespace APropos = fenetre::APropos;

namespace {

std::string systeme() {
  return "macOS, " + enUTF8(NSProcessInfo.processInfo.operatingSystemVersionString);
}

NSAttributedString* credits() {
  const auto texte =
      std::string(APropos::objet) + "\n\n" + APropos::licence + "\n\n" + APropos::journal(systeme());
  NSDictionary* attributs = @{
    NSFontAttributeName : [NSFont systemFontOfSize:NSFont.smallSystemFontSize],
    NSForegroundColorAttributeName : NSColor.labelColor
  };
  return [[NSAttributedString alloc] initWithString:enNSString(texte) attributes:attributs];
}

} // namespace

void montrerLAPropos() {
  [NSApp orderFrontStandardAboutPanelWithOptions:@{NSAboutPanelOptionCredits : credits()}];
}

} // namespace keltrove::bureau
