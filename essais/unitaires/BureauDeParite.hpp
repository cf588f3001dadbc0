// BureauDeParite : le joueur « sans-ecran » de la table de parité. Un vrai moteur, un vrai serveur ; ni
// fenêtre, ni système, ni temps qui passe.
#pragma once

#include "BoucleVirtuelle.hpp"
#include "BureauEnregistreur.hpp"
#include "MaisonTemporaire.hpp"
#include "SortieDErreurNotee.hpp"
#include "TableDeParite.hpp"
#include "app/DelegueApplication.hpp"
#include "fenetre/SuiviDuGlissement.hpp"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace keltrove::essais {

class BureauDeParite {
public:
  explicit BureauDeParite(const ScenarioDeParite& scenario);
  BureauDeParite(const BureauDeParite&) = delete;
  BureauDeParite& operator=(const BureauDeParite&) = delete;
  // Aucun serveur d’essai ne lui survit.
  ~BureauDeParite();

  int port() const { return maison_.port(); }
  void faire(const std::string& geste, const std::string& objet);
  // Fait vivre l’application jusque-là ; faux à bout de patience.
  bool attendre(const std::function<bool()>& vrai);

  // Ce qui s’est vu, dans l’ordre.
  std::vector<std::string> suite(const std::string& voix) const;
  // Ce qui se voit maintenant.
  std::string etat(const std::string& voix) const;

private:
  using Geste = void (BureauDeParite::*)(const std::string& objet);
  struct Application;

  std::unique_ptr<Application> creer() const;
  void lancerUnServeur();
  void repondreAuSysteme();
  void repondreALaSonde();

  void lancer(const std::string&);
  void reessayer(const std::string&);
  void demanderLaFermeture(const std::string&);
  void laPageVient(const std::string&);
  void leServeurMeurt(const std::string&);
  void leTempsPasse(const std::string&) { leTempsPasse_ = true; }

  void poser(const std::string& nom, const std::string& contenu = "") const;
  void retirer(const std::string& nom) const;
  std::string etatDeLEcran() const;
  std::string etatDeLaFenetre() const;
  bool repond() const;
  VueEnregistreuse& vue() const;

  const ScenarioDeParite& scenario_;
  MaisonTemporaire maison_;
  SortieDErreurNotee sortie_;
  std::shared_ptr<BoucleVirtuelle> boucle_ = std::make_shared<BoucleVirtuelle>();
  std::unique_ptr<Application> application_;
  std::size_t sondees_ = 0;              // les évaluations déjà vues
  bool leTempsPasse_ = false;            // jusqu’au geste suivant
  std::unique_ptr<Application> voisine_; // celle du serveur déjà là
};

} // namespace keltrove::essais
