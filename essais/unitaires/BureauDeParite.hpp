// BureauDeParite : le joueur « sans-ecran » de la table de parité. Un vrai moteur, un vrai serveur ; ni
// fenêtre, ni système, ni temps qui passe.
#pragma once

#include "BoucleVirtuelle.hpp"
#include "HorlogeAcceleree.hpp"
#include "MaisonTemporaire.hpp"
#include "ServeurFactice.hpp"
#include "SortieDErreurNotee.hpp"
#include "TableDeParite.hpp"
#include "VueEnregistreuse.hpp"
#include "fenetre/SuiviDuGlissement.hpp"
#include "pont/CentreNotifications.hpp"

#include <functional>
#include <map>
#include <memory>
#include <optional>
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

  // Celui que l’application souhaite.
  int port() const { return etranger_ ? etranger_->port() : maison_.port(); }
  void faire(const std::string& geste, const std::string& objet);
  // Fait vivre l’application jusque-là ; faux à bout de patience.
  bool attendre(const std::function<bool()>& vrai);

  // Ce qui s’est vu, dans l’ordre.
  std::vector<std::string> suite(const std::string& voix) const;
  // Ce qui se voit maintenant.
  std::string etat(const std::string& voix) const;

private:
  struct Application;
  using Geste = std::function<void(BureauDeParite&, const std::string& objet)>;
  static const std::map<std::string, Geste>& gestes();

  // Le départ.
  void poserLeCode(const std::string& code);
  void accueillir(const std::string& qui);
  void creerLApplication();

  // Ce que font, d’eux-mêmes, le système et la page.
  void vivre();
  void repondreDuCentre();
  void montrer(const pont::Notification& notification);
  void ecouterLesEvaluations();

  void demanderLaFermeture();
  void cliquer(const std::string& numero);
  void entrer(const fenetre::Portes& portes);
  void tuerLeServeur();
  void degelerLeServeur();

  void poser(const std::string& nom, const std::string& contenu = "") const;
  std::string ou(const std::string& nom) const;
  bool repond() const;
  VueEnregistreuse& vue() const;
  std::string etatDeLEcran() const;
  std::string etatDeLaFenetre() const;
  std::string etatDeLApplication() const;

  MaisonTemporaire maison_;
  SortieDErreurNotee sortie_;
  std::shared_ptr<BoucleVirtuelle> boucle_ = std::make_shared<BoucleVirtuelle>();
  std::shared_ptr<HorlogeAcceleree> horloge_ = std::make_shared<HorlogeAcceleree>();
  bool leTempsPasse_ = false; // jusqu’au geste suivant
  int devantAvant_ = 0;       // combien de fois la fenêtre est venue devant, avant qu’une autre ne la couvre
  bool sansNode_ = false;
  pont::Autorisation autorisation_ = pont::Autorisation::accordee;
  std::vector<std::string> notifications_, page_, systeme_;
  std::vector<pont::Notification> montrees_; // à son rang, la dernière de chaque identifiant
  fenetre::SuiviDuGlissement glissement_;
  std::string texteGlisse_;
  std::unique_ptr<ServeurFactice> etranger_;
  std::vector<std::unique_ptr<Application>> applications_; // la dernière est celle que l’on mène
};

} // namespace keltrove::essais
