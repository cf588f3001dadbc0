// VueWebDepot : le dépôt de fichiers dans la page.
//
// Un glissement qui porte des fichiers est pris à la vue web et remis à la page en chemins ; tout autre
// glissement est laissé à la vue web. Le bureau rapporte ce qui arrive au-dessus de sa vue et obéit à la
// réponse ; les sept opérations ont le nom et l’ordre qu’AppKit donne aux siennes. La page apprend le survol
// par keltroveSurvolChemins et le dépôt par keltroveDeposerChemins. Rien n’échoue : une page qui ne définit
// pas ces fonctions ne voit rien. Fil principal seulement.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

namespace keltrove::fenetre {

struct Point {
  double x = 0;
  double y = 0;
};

// La vue au moment du glissement. Le zoom est celui de la page ; l’agrandissement, celui que le bureau
// donne à son texte.
struct MesuresDeLaVue {
  double hauteur = 0;
  bool origineEnHaut = true;
  double zoom = 1;
  double agrandissement = 1;
};

struct Glissement {
  // Fichiers locaux seulement, absolus, en UTF-8, dans l’ordre du glissement.
  std::vector<std::string> chemins;
  Point point; // dans la vue, en pixels logiques
  MesuresDeLaVue vue;
};

// Le point en pixels CSS, depuis le coin haut gauche de la page visible.
Point pointDansLaPage(const Point& point, const MesuresDeLaVue& vue);

class VueWebDepot {
public:
  // À exécuter dans chaque page du cadre principal, avant tout autre script : la page y apprend qu’elle
  // recevra des chemins (serveur/page/depot.js).
  static constexpr const char* scriptDOuverture =
      "window.keltroveApp = Object.freeze({ depotChemins: true });";

  // Le corps d’une fonction et ses arguments nommés, à exécuter dans le cadre principal de la page. Le
  // résultat et les erreurs sont ignorés.
  using AppelDeLaPage = std::function<void(const char* corps, const nlohmann::json& arguments)>;

  enum class Reponse {
    commeLaVueWeb, // ce que la vue web ferait d’elle-même
    copie,         // le glissement est à nous ; aucune autre opération n’est offerte
  };

  explicit VueWebDepot(AppelDeLaPage appelerLaPage);

  // Un glissement entre, et dit s’il porte des fichiers : les suivantes s’en souviennent. Entrer
  // de nouveau le redit.
  Reponse draggingEntered(const Glissement& glissement);
  Reponse draggingUpdated(const Glissement& glissement);
  Reponse draggingExited();
  // La fin du glissement, ici ou ailleurs ; la vue web n’en est jamais prévenue.
  void draggingEnded();
  // Lâché : le prend-on ?
  Reponse prepareForDragOperation() const;
  // Rien : à la vue web de faire. Sinon, vrai si des chemins ont été remis.
  std::optional<bool> performDragOperation(const Glissement& glissement);
  // Remis ou non, il n’y a plus de glissement.
  Reponse concludeDragOperation();

  // Des fichiers survolent la page, et elle le sait.
  bool glisserDeFichiers() const { return glisserDeFichiers_; }

private:
  void survoler(const Glissement& glissement);
  void finirLeSurvol();

  AppelDeLaPage appelerLaPage_;
  bool glisserDeFichiers_ = false;
};

} // namespace keltrove::fenetre
