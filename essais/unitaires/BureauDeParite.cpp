#include "BureauDeParite.hpp"

#include "BureauEnregistreur.hpp"
#include "app/DelegueApplication.hpp"
#include "essais/parite/Entendu.hpp"
#include "fenetre/SondeContenu.hpp"
#include "moteur/Sonde.hpp"
#include "pont/PontNotifications.hpp"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

namespace keltrove::essais {
namespace {

constexpr double unPas = 0.5; // secondes

std::string lireLeServeur() {
  std::ifstream serveur(KELTROVE_PARITE "/serveur.mjs");
  return {std::istreambuf_iterator<char>(serveur), {}};
}

std::vector<std::string> mots(const std::string& texte) {
  std::istringstream flux(texte);
  return {std::istream_iterator<std::string>(flux), {}};
}

std::string surUneLigne(std::string texte) {
  std::ranges::replace(texte, '\n', ' ');
  return texte;
}

} // namespace

struct BureauDeParite::Application {
  BureauEnregistreur bureau;
  std::shared_ptr<moteur::MoteurServeur> moteur;
  app::DelegueApplication delegue;
  bool partie = false;
  bool pageVenue = false; // avant, ce qu’on lui dit se perd
  std::size_t evaluationsVues = 0;
  std::size_t liensVus = 0;

  Application(const std::shared_ptr<BoucleVirtuelle>& boucle, const std::shared_ptr<socle::Horloge>& horloge,
              moteur::Emplacements emplacements)
      : moteur(std::make_shared<moteur::MoteurServeur>(
            moteur::MoteurServeur::Contexte{.boucle = boucle,
                                            .horloge = horloge,
                                            .emplacements = std::move(emplacements),
                                            .environnement = socle::Environnement::duProcessus()})),
        delegue(moteur, boucle, bureau) {}
};

// Le départ.
BureauDeParite::BureauDeParite(const ScenarioDeParite& scenario)
    : glissement_({.appelerLaPage = [this](const char* corps,
                                           const nlohmann::json& a) { page_.push_back(entendu(corps, a)); },
                   .rendreALaVueWeb = [] {},
                   .quitterLaVueWeb = [] {},
                   .deposerDansLaVueWeb = [this] { page_.push_back("texte(\"" + texteGlisse_ + "\")"); },
                   .conclure = [](bool) {},
                   .ecarterDesIllisibles = [](std::size_t) {}}) {
  const auto mode = scenario.auDepart("mode");
  if (mode == "discret") ::setenv("KELTROVE_DISCRET", "1", 1);
  if (mode == "essai") ::setenv("KELTROVE_ESSAI", "1", 1);
  if (mode == "essai") ::setenv("KELTROVE_ESSAI_QUITTER", "5", 1);
  using enum pont::Autorisation;
  const auto notifications = scenario.auDepart("notifications");
  if (notifications == "jamais demandées") autorisation_ = indeterminee;
  if (notifications == "refusées") autorisation_ = refusee;
  if (notifications == "absentes") autorisation_ = absente;
  maison_.ecrire(".zelcor/keltrove-jeton", "abc");
  poserLeCode(scenario.auDepart("code", "ordinaire"));
  accueillir(scenario.auDepart("déjà là"));
  creerLApplication();
}

void BureauDeParite::poserLeCode(const std::string& code) {
  sansNode_ = code == "sans node";
  const bool ordinaire = sansNode_ || code == "le nôtre";
  if (code == "aucun") return;
  if (code == "irrecevable")
    return maison_.ecrireExecutable("ressources/demarrer-keltrove.sh", "#!/nulle/part\n");
  poser("serveur.mjs", lireLeServeur());
  poser("conduite", ordinaire ? "ordinaire" : code);
}

void BureauDeParite::accueillir(const std::string& qui) {
  if (qui == "un étranger") {
    etranger_ = std::make_unique<ServeurFactice>(reponseHTTP("200 OK", "bonjour", ""));
    maison_.ecrire(".zelcor/keltrove.json", "{\"port\": " + std::to_string(port()) + "}");
  }
  if (qui != "un serveur") return;
  creerLApplication(); // celle d’avant
  bool la = false;
  applications_.back()->moteur->demarrer([&](const moteur::Demarrage&) { la = true; });
  boucle_->attendre([&] { return la; });
}

void BureauDeParite::creerLApplication() {
  const auto nodes = sansNode_ ? std::vector<std::string>() : moteur::Emplacements::nodesDuSysteme;
  applications_.push_back(std::make_unique<Application>(
      boucle_, horloge_, moteur::Emplacements(maison_.chemin("ressources"), nodes)));
}

BureauDeParite::~BureauDeParite() {
  poser("finis");
  for (const auto& une : applications_) {
    bool fini = false;
    une->moteur->arreter([&](const std::string&) { fini = true; });
    boucle_->attendre([&] { return fini; });
  }
  for (const char* variable : {"KELTROVE_DISCRET", "KELTROVE_ESSAI", "KELTROVE_ESSAI_QUITTER"})
    ::unsetenv(variable);
}

// Ce que font, d’eux-mêmes, le système et la page.
bool BureauDeParite::attendre(const std::function<bool()>& vrai) {
  return boucle_->attendre([&] {
    if (leTempsPasse_) boucle_->avancer(unPas);
    vivre();
    return vrai();
  });
}

void BureauDeParite::vivre() {
  auto& application = *applications_.back();
  ecouterLesEvaluations();
  repondreDuCentre();
  for (; application.liensVus < application.bureau.liens.size(); ++application.liensVus)
    systeme_.push_back("navigateur " + application.bureau.liens[application.liensVus].first);
  if (std::exchange(application.bureau.fermetures, 0) > 0) demanderLaFermeture();
  if (application.bureau.departs > 0) application.partie = true;
  if (!application.partie || !application.delegue.aRouvrir()) return;
  creerLApplication();
  applications_.back()->delegue.applicationDidFinishLaunching();
}

void BureauDeParite::ecouterLesEvaluations() {
  auto& application = *applications_.back();
  for (auto& vues = application.evaluationsVues; vues < vue().evaluations.size(); ++vues) {
    const auto [expression, fini] = vue().evaluations[vues];
    if (expression == fenetre::expressionDeSonde) fini("Essai|8|jeton-rempli");
    const auto dit = entendu(expression);
    if (dit && application.pageVenue) page_.push_back(*dit);
  }
}

void BureauDeParite::repondreDuCentre() {
  auto& centre = applications_.back()->bureau.centre;
  for (const auto& lecture : std::exchange(centre.lectures, {}))
    lecture(autorisation_);
  for (const auto& demande : std::exchange(centre.demandes, {})) {
    notifications_.emplace_back("permission demandée");
    autorisation_ = pont::Autorisation::accordee;
    demande(true);
  }
  const bool absent = autorisation_ == pont::Autorisation::absente;
  for (const auto& [notification, fini] : std::exchange(centre.notifications, {})) {
    if (!absent) montrer(notification);
    fini(absent ? pont::Remise(pont::CentreAbsent{}) : pont::Remise(pont::Posee{}));
  }
  if (std::exchange(centre.reglagesOuverts, 0) > 0) systeme_.emplace_back("réglages des notifications");
}

void BureauDeParite::montrer(const pont::Notification& notification) {
  auto place = std::ranges::find(montrees_, notification.identifiant, &pont::Notification::identifiant);
  if (place == montrees_.end()) place = montrees_.insert(place, notification);
  *place = notification;
  notifications_.push_back(std::to_string(place - montrees_.begin() + 1) + " " + notification.titre + " / " +
                           notification.corps);
}

// Les gestes.
const std::map<std::string, BureauDeParite::Geste>& BureauDeParite::gestes() {
  using Bureau = BureauDeParite;
  using Texte = const std::string&;
  static const auto fermer = [](Bureau& b, Texte) { b.demanderLaFermeture(); };
  static const auto raterDe = [](fenetre::CauseDEchec cause) {
    return [cause](Bureau& b, Texte) {
      b.vue().observateur->quandNavigationRatee({.cause = cause, .description = "connexion perdue"});
    };
  };
  static const auto ouvrirPar = [](fenetre::Geste geste) {
    return [geste](Bureau& b, Texte adresse) {
      const auto vers = adresse.empty() ? "https://exemple.fr/lien" : adresse;
      b.vue().observateur->laPageVeutOuvrir({.adresse = vers, .geste = geste});
    };
  };
  static const std::map<std::string, Geste> tous{
      {"lancer", [](Bureau& b, Texte) { b.applications_.back()->delegue.applicationDidFinishLaunching(); }},
      {"réessayer", [](Bureau& b, Texte) { b.vue().observateur->quandOnReessaie(); }},
      {"voir le détail", [](Bureau& b, Texte) { b.vue().observateur->quandOnBasculeLeDetail(); }},
      {"recharger", [](Bureau& b, Texte) { b.vue().observateur->quandOnRecharge(); }},
      {"quitter", fermer},
      {"fermer la fenêtre", fermer},
      {"finir la session", fermer},
      {"rouvrir", [](Bureau& b, Texte) { b.applications_.back()->delegue.quandOnNousRelance(); }},
      {"regarder ailleurs", [](Bureau& b, Texte) { b.devantAvant_ = b.vue().devant; }},
      {"la page vient",
       [](Bureau& b, Texte) {
         b.vivre();
         b.applications_.back()->pageVenue = true;
         b.vue().observateur->quandNavigationCommence();
         b.vue().observateur->quandNavigationFinie();
       }},
      {"la page rate", raterDe(fenetre::CauseDEchec::chargement)},
      {"le programme de la page meurt", raterDe(fenetre::CauseDEchec::arret)},
      {"la page dit",
       [](Bureau& b, Texte message) {
         b.vue().observateur->quandLaPageEcrit(pont::PontNotifications::nomDuCanal,
                                               pont::lireLeMessage(message));
       }},
      {"la page s’en va vers", ouvrirPar(fenetre::Geste::aucun)},
      {"suivre le lien de la page", ouvrirPar(fenetre::Geste::deLUtilisateur)},
      {"cliquer la notification", [](Bureau& b, Texte numero) { b.cliquer(numero); }},
      {"glisser des fichiers",
       [](Bureau& b, Texte chemins) {
         b.entrer({.chemins = mots(chemins)});
         b.glissement_.deposer({.x = 2, .y = 2}, {});
       }},
      {"glisser un texte",
       [](Bureau& b, Texte texte) {
         b.texteGlisse_ = texte;
         b.entrer({});
         b.glissement_.deposer({.x = 2, .y = 2}, {});
         b.glissement_.quandLaPageRepond(true);
       }},
      {"survoler avec un fichier",
       [](Bureau& b, Texte chemin) {
         b.entrer({.chemins = {chemin}});
         b.glissement_.sortir();
       }},
      {"le serveur meurt", [](Bureau& b, Texte) { b.tuerLeServeur(); }},
      {"le serveur gèle", [](Bureau& b, Texte) { b.poser("gele"); }},
      {"le serveur se dégèle", [](Bureau& b, Texte) { b.degelerLeServeur(); }},
      {"le serveur finit", [](Bureau& b, Texte) { b.poser("finis"); }},
      {"le temps passe",
       [](Bureau& b, Texte) {
         b.leTempsPasse_ = true;
         b.horloge_->presser();
       }},
  };
  return tous;
}

void BureauDeParite::faire(const std::string& geste, const std::string& objet) {
  leTempsPasse_ = false;
  horloge_->patienter();
  gestes().at(geste)(*this, objet);
}

void BureauDeParite::demanderLaFermeture() {
  auto& application = *applications_.back();
  if (application.delegue.applicationShouldTerminate() == app::ReponseFermeture::maintenant)
    application.partie = true;
}

void BureauDeParite::cliquer(const std::string& numero) {
  const auto& cliquee = montrees_.at(std::stoul(numero) - 1);
  applications_.back()->bureau.centre.delegue->quandOnClique(cliquee.terminal);
}

void BureauDeParite::entrer(const fenetre::Portes& portes) {
  glissement_.commencer();
  glissement_.entrer({.x = 1, .y = 1}, {});
  glissement_.apprendre(portes);
}

void BureauDeParite::tuerLeServeur() {
  poser("meurs");
  attendre([this] { return !repond(); });
  maison_.effacer(ou("meurs"));
}

void BureauDeParite::degelerLeServeur() {
  ::kill(std::stoi(maison_.lire(ou("pid"))), SIGCONT);
  attendre([this] { return repond(); });
}

std::string BureauDeParite::ou(const std::string& nom) const {
  return "ressources/keltrove/" + nom;
}

void BureauDeParite::poser(const std::string& nom, const std::string& contenu) const {
  maison_.ecrire(ou(nom), contenu);
}

// Ce que l’on en voit.
VueEnregistreuse& BureauDeParite::vue() const {
  return applications_.back()->bureau.vue;
}

bool BureauDeParite::repond() const {
  return moteur::cEstBienKeltrove(port());
}

std::vector<std::string> BureauDeParite::suite(const std::string& voix) const {
  if (voix == "journal") return sortie_.lignes();
  if (voix == "page") return page_;
  return voix == "notification" ? notifications_ : systeme_;
}

std::string BureauDeParite::etat(const std::string& voix) const {
  const auto& ecran = vue().ecran();
  if (voix == "écran") return etatDeLEcran();
  if (voix == "phrase") return surUneLigne(ecran.phrase);
  if (voix == "conseil") return ecran.conseil;
  if (voix == "détail") return ecran.cadreDetail ? ecran.detail : "aucun";
  if (voix == "bandeau") return vue().bandeaux.back().visible ? vue().bandeaux.back().texte : "aucun";
  if (voix == "fenêtre") return etatDeLaFenetre();
  if (voix == "serveur") return repond() ? "répond" : "parti";
  return etatDeLApplication();
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
  if (vue().devant > devantAvant_) return "devant";
  return vue().devant + vue().derriere > 0 ? "derrière" : "cachée";
}

std::string BureauDeParite::etatDeLApplication() const {
  if (applications_.back()->partie) return "partie";
  return applications_.size() > 1 && (*std::prev(applications_.end(), 2))->partie ? "rouverte" : "en marche";
}

} // namespace keltrove::essais
