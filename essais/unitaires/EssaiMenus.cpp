#include "BoucleVirtuelle.hpp"
#include "BureauEnregistreur.hpp"
#include "fenetre/FenetrePrincipale.hpp"
#include "fenetre/Menus.hpp"

#include <algorithm>

#include <gtest/gtest.h>

namespace keltrove::fenetre {
namespace {

using Menus::Action;
using Menus::Article;
using Menus::Cible;
using Menus::Raccourci;
using Menus::Role;
using Menus::Separateur;
using Lignes = std::vector<std::variant<Article, Separateur>>;

constexpr Menus::Modificateurs option{.option = true};
constexpr Menus::Modificateurs maj{.maj = true};
constexpr Menus::Modificateurs majEtOption{.maj = true, .option = true};
constexpr Menus::Modificateurs controle{.controle = true};

TEST(EssaiMenus, IlYEnAQuatreDontLePremierNAPasDeTitre) {
  std::vector<std::string> titres;
  for (const auto& menu : Menus::barre())
    titres.push_back(menu.titre);
  EXPECT_EQ(titres, (std::vector<std::string>{"", "Édition", "Présentation", "Fenêtre"}));
}

TEST(EssaiMenus, CeluiDeLApplication) {
  EXPECT_EQ(Menus::barre().at(0).articles,
            (Lignes{Article{"À propos de Keltrove", {}, Action::orderFrontStandardAboutPanel}, Separateur{},
                    Article{"Masquer Keltrove", Raccourci{'h'}, Action::hide},
                    Article{"Masquer les autres", Raccourci{'h', option}, Action::hideOtherApplications},
                    Article{"Tout afficher", {}, Action::unhideAllApplications}, Separateur{},
                    Article{"Quitter Keltrove", Raccourci{'q'}, Action::terminate}}));
}

TEST(EssaiMenus, CeluiDEdition) {
  EXPECT_EQ(
      Menus::barre().at(1).articles,
      (Lignes{Article{"Annuler", Raccourci{'z'}, Action::undo},
              Article{"Rétablir", Raccourci{'z', maj}, Action::redo}, Separateur{},
              Article{"Couper", Raccourci{'x'}, Action::cut}, Article{"Copier", Raccourci{'c'}, Action::copy},
              Article{"Coller", Raccourci{'v'}, Action::paste},
              Article{"Coller sans la mise en forme", Raccourci{'v', majEtOption}, Action::pasteAsPlainText},
              Article{"Tout sélectionner", Raccourci{'a'}, Action::selectAll}}));
}

TEST(EssaiMenus, CeluiDePresentationDontLeRechargementVaALaFenetre) {
  EXPECT_EQ(Menus::barre().at(2).articles,
            (Lignes{Article{"Recharger la page", Raccourci{'r'}, Action::rechargerVraiment,
                            Cible::fenetrePrincipale},
                    Separateur{},
                    Article{"Activer le plein écran", Raccourci{'f', controle}, Action::toggleFullScreen}}));
}

TEST(EssaiMenus, CeluiDeFenetre) {
  EXPECT_EQ(Menus::barre().at(3).articles,
            (Lignes{Article{"Réduire", Raccourci{'m'}, Action::performMiniaturize},
                    Article{"Fermer", Raccourci{'w'}, Action::performClose}, Separateur{},
                    Article{"Tout ramener au premier plan", {}, Action::arrangeInFront}}));
}

TEST(EssaiMenus, CommandeEstDeTousLesRaccourcisEtSeulLeRechargementAUneCible) {
  for (const auto& menu : Menus::barre())
    for (const auto& ligne : menu.articles) {
      const auto* article = std::get_if<Article>(&ligne);
      if (!article) continue;
      EXPECT_TRUE(!article->raccourci || article->raccourci->modificateurs.commande) << article->titre;
      EXPECT_EQ(article->cible == Cible::fenetrePrincipale, article->action == Action::rechargerVraiment);
    }
}

TEST(EssaiMenus, CertainsMenusOntUnRolePourLeSysteme) {
  std::vector<Role> roles;
  for (const auto& menu : Menus::barre())
    roles.push_back(menu.role);
  EXPECT_EQ(roles, (std::vector{Role::application, Role::ordinaire, Role::ordinaire, Role::fenetres}));
}

TEST(EssaiMenus, UneActionALeTitreDeSonArticleEtLeNomQuOnLuiConnait) {
  EXPECT_EQ(Menus::titreDe(Action::copy), "Copier");
  EXPECT_EQ(Menus::titreDe(Action::arrangeInFront), "Tout ramener au premier plan");
  std::vector<std::string> noms;
  for (const auto& menu : Menus::barre())
    for (const auto& ligne : menu.articles)
      if (const auto* article = std::get_if<Article>(&ligne)) noms.push_back(Menus::nomDe(article->action));
  EXPECT_EQ(noms, (std::vector<std::string>{"orderFrontStandardAboutPanel", "hide", "hideOtherApplications",
                                            "unhideAllApplications", "terminate", "undo", "redo", "cut",
                                            "copy", "paste", "pasteAsPlainText", "selectAll",
                                            "rechargerVraiment", "toggleFullScreen", "performMiniaturize",
                                            "performClose", "arrangeInFront"}));
}

TEST(EssaiMenus, AucunRaccourciNeSertDeuxFois) {
  std::vector<Raccourci> vus;
  for (const auto& menu : Menus::barre())
    for (const auto& ligne : menu.articles) {
      const auto* article = std::get_if<Article>(&ligne);
      if (!article || !article->raccourci) continue;
      EXPECT_EQ(std::ranges::count(vus, *article->raccourci), 0) << article->titre;
      vus.push_back(*article->raccourci);
    }
}

TEST(EssaiMenus, RechargerDemandeUnEssaiMemeSansPage) {
  essais::BoucleVirtuelle boucle;
  essais::BureauEnregistreur bureau;
  auto& vue = bureau.vue;
  FenetrePrincipale fenetre(bureau, boucle);
  int demandes = 0;
  fenetre.quandOnDemandeUnEssai = [&] { ++demandes; };
  Menus::installer(vue);
  fenetre.ecran().montrerAttente("T", "P");
  vue.observateur->quandOnRecharge();
  EXPECT_EQ(demandes, 1);
  EXPECT_TRUE(vue.adresses.empty()) << "la page n’est pas rechargée d’ici";
  EXPECT_EQ(vue.menus.size(), 4U);
}

} // namespace
} // namespace keltrove::fenetre
