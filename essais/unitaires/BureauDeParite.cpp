#include "BureauDeParite.hpp"

#include "HorlogeAcceleree.hpp"
#include "fenetre/SondeContenu.hpp"
#include "moteur/Sonde.hpp"

#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>

namespace keltrove::essais {
namespace {

constexpr double unPas = 0.5; // secondes
const std::string dossierDuServeur = "ressources/keltrove/";

std::string lireLeServeur() {
  std::ifstream serveur(KELTROVE_PARITE "/serveur.mjs");
  return {std::istreambuf_iterator<char>(serveur), {}};
}

} // namespace

struct BureauDeParite::Application {
  BureauEnregistreur bureau;
  std::shared_ptr<moteur::MoteurServeur> moteur;
  app::DelegueApplication delegue;
  bool partie = false;

  Application(const std::shared_ptr<BoucleVirtuelle>& boucle, moteur::Emplacements emplacements)
      : moteur(std::make_shared<moteur::MoteurServeur>(
            moteur::MoteurServeur::Contexte{.boucle = boucle,
                                            .horloge = std::make_shared<HorlogeAcceleree>(),
                                            .emplacements = std::move(emplacements),
                                            .environnement = socle::Environnement::duProcessus()})),
        delegue(moteur, boucle, bureau) {}
};

BureauDeParite::BureauDeParite(const ScenarioDeParite& scenario) : scenario_(scenario) {
  maison_.ecrire(".zelcor/keltrove-jeton", "abc");
  poser("serveur.mjs", lireLeServeur());
  poser("conduite", scenario.auDepart("code", "ordinaire"));
  if (scenario.auDepart("déjà là") == "un serveur") lancerUnServeur();
  application_ = creer();
}

BureauDeParite::~BureauDeParite() {
  poser("finis");
  for (auto* une : {application_.get(), voisine_.get()}) {
    if (une == nullptr) continue;
    bool fini = false;
    une->moteur->arreter([&](const std::string&) { fini = true; });
    boucle_->attendre([&] { return fini; });
  }
}

std::unique_ptr<BureauDeParite::Application> BureauDeParite::creer() const {
  return std::make_unique<Application>(boucle_, moteur::Emplacements(maison_.chemin("ressources")));
}

void BureauDeParite::lancerUnServeur() {
  voisine_ = creer();
  bool la = false;
  voisine_->moteur->demarrer([&](const moteur::Demarrage&) { la = true; });
  boucle_->attendre([&] { return la; });
}

void BureauDeParite::poser(const std::string& nom, const std::string& contenu) const {
  maison_.ecrire(dossierDuServeur + nom, contenu);
}

void BureauDeParite::retirer(const std::string& nom) const {
  maison_.effacer(dossierDuServeur + nom);
}

VueEnregistreuse& BureauDeParite::vue() const {
  return application_->bureau.vue;
}

bool BureauDeParite::repond() const {
  return moteur::cEstBienKeltrove(port());
}

bool BureauDeParite::attendre(const std::function<bool()>& vrai) {
  return boucle_->attendre([&] {
    if (leTempsPasse_) boucle_->avancer(unPas);
    repondreAuSysteme();
    repondreALaSonde();
    return vrai();
  });
}

// Ce que le système fait de ce qu’on lui a demandé.
void BureauDeParite::repondreAuSysteme() {
  if (application_->bureau.departs > 0) application_->partie = true;
}

void BureauDeParite::repondreALaSonde() {
  for (; sondees_ < vue().evaluations.size(); ++sondees_) {
    const auto [expression, fini] = vue().evaluations[sondees_];
    if (expression == fenetre::expressionDeSonde) fini("Essai|8|jeton-rempli");
  }
}

// Les gestes.
void BureauDeParite::faire(const std::string& geste, const std::string& objet) {
  static const std::map<std::string, Geste> gestes{
      {"lancer", &BureauDeParite::lancer},
      {"réessayer", &BureauDeParite::reessayer},
      {"quitter", &BureauDeParite::demanderLaFermeture},
      {"fermer la fenêtre", &BureauDeParite::demanderLaFermeture},
      {"finir la session", &BureauDeParite::demanderLaFermeture},
      {"la page vient", &BureauDeParite::laPageVient},
      {"le temps passe", &BureauDeParite::leTempsPasse},
      {"le serveur meurt", &BureauDeParite::leServeurMeurt},
  };
  leTempsPasse_ = false;
  (this->*gestes.at(geste))(objet);
}

void BureauDeParite::lancer(const std::string&) {
  application_->delegue.applicationDidFinishLaunching();
}

void BureauDeParite::reessayer(const std::string&) {
  vue().observateur->quandOnReessaie();
}

void BureauDeParite::demanderLaFermeture(const std::string&) {
  application_->partie =
      application_->delegue.applicationShouldTerminate() == app::ReponseFermeture::maintenant;
}

void BureauDeParite::laPageVient(const std::string&) {
  vue().observateur->quandNavigationCommence();
  vue().observateur->quandNavigationFinie();
}

void BureauDeParite::leServeurMeurt(const std::string&) {
  poser("meurs");
  attendre([this] { return !repond(); });
  retirer("meurs");
}

// Ce que l’on en voit.
std::vector<std::string> BureauDeParite::suite(const std::string& voix) const {
  if (voix == "journal") return sortie_.lignes();
  return {};
}

std::string BureauDeParite::etat(const std::string& voix) const {
  if (voix == "écran") return etatDeLEcran();
  if (voix == "phrase") return vue().ecran().phrase;
  if (voix == "fenêtre") return etatDeLaFenetre();
  if (voix == "serveur") return repond() ? "répond" : "parti";
  if (voix == "application") return application_->partie ? "partie" : "en marche";
  throw std::invalid_argument("aucune voix de ce nom : " + voix);
}

std::string BureauDeParite::etatDeLEcran() const {
  const auto& ecran = vue().ecran();
  if (!ecran.visible) return "page";
  auto dit = ecran.titre;
  if (ecran.boutonReessayer) dit += " | " + ecran.titreDuBoutonReessayer;
  if (ecran.boutonDetail) dit += " | " + ecran.titreDuBoutonDetail;
  return dit;
}

std::string BureauDeParite::etatDeLaFenetre() const {
  if (vue().devant > 0) return "devant";
  return vue().derriere > 0 ? "derrière" : "cachée";
}

} // namespace keltrove::essais
