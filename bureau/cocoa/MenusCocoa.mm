#include "bureau/cocoa/MenusCocoa.hpp"

#include "bureau/cocoa/Textes.hpp"

#import <AppKit/AppKit.h>

// Des actions que tout répondeur peut avoir, et qu’aucun en-tête de ce rang ne nomme.
@protocol ActionsStandard
- (void)undo:(id)source;
- (void)redo:(id)source;
- (void)pasteAsPlainText:(id)source;
- (void)rechargerVraiment:(id)source;
@end

namespace keltrove::bureau {

namespace Menus = fenetre::Menus;
using Menus::Action;

namespace {

SEL selecteurDe(Action action) {
  switch (action) {
  case Action::orderFrontStandardAboutPanel:
    return @selector(orderFrontStandardAboutPanel:);
  case Action::hide:
    return @selector(hide:);
  case Action::hideOtherApplications:
    return @selector(hideOtherApplications:);
  case Action::unhideAllApplications:
    return @selector(unhideAllApplications:);
  case Action::terminate:
    return @selector(terminate:);
  case Action::undo:
    return @selector(undo:);
  case Action::redo:
    return @selector(redo:);
  case Action::cut:
    return @selector(cut:);
  case Action::copy:
    return @selector(copy:);
  case Action::paste:
    return @selector(paste:);
  case Action::pasteAsPlainText:
    return @selector(pasteAsPlainText:);
  case Action::selectAll:
    return @selector(selectAll:);
  case Action::rechargerVraiment:
    return @selector(rechargerVraiment:);
  case Action::toggleFullScreen:
    return @selector(toggleFullScreen:);
  case Action::performMiniaturize:
    return @selector(performMiniaturize:);
  case Action::performClose:
    return @selector(performClose:);
  case Action::arrangeInFront:
    return @selector(arrangeInFront:);
  }
  return nullptr;
}

NSEventModifierFlags modificateursDe(const Menus::Modificateurs& modificateurs) {
  NSEventModifierFlags drapeaux = 0;
  if (modificateurs.maj) drapeaux |= NSEventModifierFlagShift;
  if (modificateurs.option) drapeaux |= NSEventModifierFlagOption;
  if (modificateurs.controle) drapeaux |= NSEventModifierFlagControl;
  if (modificateurs.commande) drapeaux |= NSEventModifierFlagCommand;
  return drapeaux;
}

NSMenuItem* traduire(const Menus::Article& article, id cible) {
  const auto& raccourci = article.raccourci;
  NSMenuItem* element =
      [[NSMenuItem alloc] initWithTitle:enNSString(article.titre)
                                 action:selecteurDe(article.action)
                          keyEquivalent:raccourci ? enNSString({&raccourci->lettre, 1}) : @""];
  if (raccourci) element.keyEquivalentModifierMask = modificateursDe(raccourci->modificateurs);
  if (article.cible == Menus::Cible::fenetrePrincipale) element.target = cible;
  return element;
}

NSMenu* traduire(const Menus::Menu& menu, id cible) {
  NSMenu* traduit = [[NSMenu alloc] initWithTitle:enNSString(menu.titre)];
  for (const auto& ligne : menu.articles) {
    const auto* article = std::get_if<Menus::Article>(&ligne);
    [traduit addItem:article != nullptr ? traduire(*article, cible) : [NSMenuItem separatorItem]];
  }
  return traduit;
}

} // namespace

void poserLesMenus(const std::vector<Menus::Menu>& menus, id cible) {
  NSMenu* barre = [[NSMenu alloc] initWithTitle:@""];
  NSMenu* fenetres = nil;
  for (const auto& menu : menus) {
    NSMenuItem* element = [[NSMenuItem alloc] initWithTitle:enNSString(menu.titre)
                                                     action:nullptr
                                              keyEquivalent:@""];
    element.submenu = traduire(menu, cible);
    [barre addItem:element];
    if (menu.role == Menus::Role::fenetres) fenetres = element.submenu;
  }
  NSApp.mainMenu = barre;
  NSApp.windowsMenu = fenetres;
}

} // namespace keltrove::bureau
