// La barre de menus : sa table, ses raccourcis, sa validation.

#include "fenetre/Menus.hpp"

#include "Scenario.hpp"
#include "fenetre/APropos.hpp"

using namespace essais;
namespace Menus = keltrove::fenetre::Menus;

namespace {

NSUInteger masqueDe(const Menus::Modificateurs& modificateurs) {
  return (modificateurs.maj ? NSShiftKeyMask : 0) | (modificateurs.option ? NSAlternateKeyMask : 0) |
         (modificateurs.controle ? NSControlKeyMask : 0) | (modificateurs.commande ? NSCommandKeyMask : 0);
}

void exigerLArticle(NSMenuItem* pose, const Menus::Article& voulu) {
  exigerEgal(texte(pose.title), voulu.titre, "le titre");
  exigerEgal(texte(NSStringFromSelector(pose.action)), std::string(Menus::nomDe(voulu.action)) + ":",
             "l’action de " + voulu.titre);
  exigerEgal(texte(pose.keyEquivalent), voulu.raccourci ? std::string(1, voulu.raccourci->lettre) : "",
             "la touche de " + voulu.titre);
  if (voulu.raccourci)
    exiger(pose.keyEquivalentModifierMask == masqueDe(voulu.raccourci->modificateurs), "les modificateurs");
  const bool aLaFenetre = voulu.cible == Menus::Cible::fenetrePrincipale;
  exiger(pose.target == (aLaFenetre ? controleur() : nil), "la cible de " + voulu.titre);
}

NSMenuItem* articleDe(const std::string& action) {
  for (NSMenuItem* menu in NSApp.mainMenu.itemArray)
    for (NSMenuItem* article in menu.submenu.itemArray)
      if (texte(NSStringFromSelector(article.action)) == action) return article;
  return nil;
}

bool permis(const std::string& action) {
  [fenetre() makeKeyWindow]; // le gestionnaire de fenêtres peut encore nous le rendre
  NSMenuItem* article = articleDe(action);
  [article.menu update];
  return article.isEnabled;
}

} // namespace

SCENARIO(laBarreEstCelleDeLaTable) {
  faire([] {
    NSArray* poses = NSApp.mainMenu.itemArray;
    const auto& voulus = Menus::barre();
    exiger(poses.count == voulus.size(), "quatre menus");
    for (std::size_t i = 0; i < voulus.size(); ++i) {
      NSMenu* pose = [poses[i] submenu];
      exigerEgal(texte(pose.title), voulus[i].titre, "le titre du menu");
      if (voulus[i].role == Menus::Role::fenetres) exiger(NSApp.windowsMenu == pose, "le menu des fenêtres");
      for (std::size_t j = 0; j < voulus[i].articles.size(); ++j) {
        NSMenuItem* ligne = pose.itemArray[j];
        if (const auto* article = std::get_if<Menus::Article>(&voulus[i].articles[j]))
          exigerLArticle(ligne, *article);
        else
          exiger(ligne.isSeparatorItem, "un séparateur");
      }
    }
  });
  attendreLEtape("echec-demarrage");
  quitter();
}

SCENARIO(chaqueRaccourciMeneASonAction) {
  attendreLEtape("allume");
  afficherLaPage();
  faire([] {
    page().actions.clear();
    presser(@"z", NSCommandKeyMask);
    presser(@"z", NSCommandKeyMask | NSShiftKeyMask);
    presser(@"x", NSCommandKeyMask);
    presser(@"c", NSCommandKeyMask);
    presser(@"v", NSCommandKeyMask);
    presser(@"v", NSCommandKeyMask | NSShiftKeyMask | NSAlternateKeyMask);
    presser(@"v", NSCommandKeyMask | NSShiftKeyMask); // à personne
    presser(@"a", NSCommandKeyMask);
    exiger(page().actions == std::vector<std::string>{"undo:", "redo:", "cut:", "copy:", "paste:",
                                                      "pasteAsPlainText:", "selectAll:"},
           "l’édition va à la page");
    presser(@"f", NSCommandKeyMask | NSControlKeyMask);
    exiger(systemeNote().pleinsEcrans == 1, "le plein écran");
    presser(@"m", NSCommandKeyMask);
    exiger(fenetre().isMiniaturized, "réduite");
    [fenetre() deminiaturize:nil];
    [fenetre() makeKeyAndOrderFront:nil];
    presser(@"h", NSCommandKeyMask);
    exiger(NSApp.isHidden, "masquée");
    [NSApp unhide:nil];
    presser(@"h", NSCommandKeyMask | NSAlternateKeyMask);
    exiger(!NSApp.isHidden, "les autres seulement");
    presser(@"r", NSCommandKeyMask);
    exigerEgal(titre(), "Nouvel essai…", "recharger redemande un essai");
  });
  attendreLEtape("rattache");
  quitter();
}

SCENARIO(lAProposPorteLeJournalACopier) {
  attendreLEtape("allume");
  faire([] {
    exiger(permis("orderFrontStandardAboutPanel:"), "l’article est permis");
    NSMenuItem* article = articleDe("orderFrontStandardAboutPanel:");
    [NSApp sendAction:article.action to:article.target from:article];
    exiger(systemeNote().aPropos.size() == 1, "un panneau");
    const auto& dit = systemeNote().aPropos.front();
    for (const std::string voulu :
         {keltrove::fenetre::APropos::objet, keltrove::fenetre::APropos::licence,
          "Keltrove " KELTROVE_VERSION "\nmacOS, ", "s  demarrage-demande\n", "s  allume  port="})
      exiger(dit.contains(voulu), "il porte : " + voulu);
  });
  quitter();
}

SCENARIO(lesArticlesSeGrisentSelonQuiALeClavier) {
  attendreLEtape("allume");
  attendre("une page demandée", [] { return !page().requetes.empty(); });
  faire([] {
    for (const char* action :
         {"undo:", "redo:", "cut:", "copy:", "paste:", "pasteAsPlainText:", "selectAll:"})
      exiger(!permis(action), std::string("sur l’écran d’attente, rien pour ") + action);
    for (const char* action :
         {"rechargerVraiment:", "terminate:", "hide:", "hideOtherApplications:", "performMiniaturize:",
          "performClose:", "toggleFullScreen:", "arrangeInFront:", "orderFrontStandardAboutPanel:"})
      exiger(permis(action), std::string("toujours permis : ") + action);
  });
  afficherLaPage();
  faire([] {
    exiger(permis("undo:") && permis("pasteAsPlainText:"), "la page le permet");
    page().lEditionPeut = false;
    exiger(!permis("undo:") && !permis("pasteAsPlainText:"), "la page ne le permet pas");
    page().actions.clear();
    presser(@"z", NSCommandKeyMask);
    exiger(page().actions.empty(), "un article grisé ne fait rien");
  });
  quitter();
}
