#include "moteur/MoteurServeur.hpp"

#include "socle/Reglages.hpp"
#include "socle/Texte.hpp"

#include <algorithm>
#include <system_error>
#include <utility>
#include <vector>

namespace keltrove::moteur {

using socle::Reglages::portSouhaite;

namespace {

constexpr double delaiDeReponse = 40.0;
constexpr double entreDeuxTours = 0.25;
constexpr int toursEntreDeuxRecherchesDePort = 8;

std::string texteDuSysteme(std::errc erreur) {
  return std::make_error_code(erreur).message();
}

} // namespace

socle::Environnement environnementDuServeur(socle::Environnement environnement, const std::string& maison) {
  std::vector<std::string> dossiers = {"/usr/local/bin", "/opt/homebrew/bin", "/usr/bin",
                                       "/bin",           "/usr/sbin",         "/sbin"};
  const auto herites = environnement.lire("PATH").value_or("");
  for (auto& dossier : socle::decouper(herites, ':', socle::MorceauxVides::ecartes))
    if (std::ranges::find(dossiers, dossier) == dossiers.end()) dossiers.push_back(std::move(dossier));
  environnement.definir("PATH", socle::joindre(dossiers, ":"));
  environnement.definir("HOME", maison);
  if (!environnement.lire("LANG")) environnement.definir("LANG", "fr_FR.UTF-8");
  return environnement;
}

MoteurServeur::MoteurServeur(Contexte contexte)
    : contexte_(std::move(contexte)), file_(KELTROVE_IDENTIFIANT ".moteur", 1) {}

void MoteurServeur::demarrer(std::function<void(Demarrage)> fini) {
  const auto rendre = [boucle = contexte_.boucle, fini = std::move(fini)](Demarrage issue) {
    boucle->poster([fini, issue = std::move(issue)] { fini(issue); });
  };
  const bool depose = file_.deposer([moi = shared_from_this(), rendre] { rendre(moi->demarrerVraiment()); });
  if (!depose)
    rendre(std::unexpected(LancementImpossible{texteDuSysteme(std::errc::resource_unavailable_try_again)}));
}

void MoteurServeur::neLancerPlusRien() {
  const std::lock_guard garde(verrouEtat_);
  lancementInterdit_ = true;
}

std::optional<int> MoteurServeur::port() const {
  const std::lock_guard garde(verrouEtat_);
  return port_;
}

bool MoteurServeur::nousLavonsAllume() const {
  const std::lock_guard garde(verrouEtat_);
  return nousLavonsAllume_;
}

Demarrage MoteurServeur::demarrerVraiment() {
  if (const int souhaite = portSouhaite(); cEstBienKeltrove(souhaite)) return rattacher(souhaite);
  const auto processus = lancer();
  if (!processus) return std::unexpected(processus.error());
  return attendreLaReponse(*processus, portSouhaite());
}

std::expected<MoteurServeur::ProcessusPartage, ErreurServeur> MoteurServeur::lancer() {
  const auto commande = contexte_.emplacements.commandeDeDemarrage();
  if (!commande) {
    if (!contexte_.emplacements.node()) return std::unexpected(NodeIntrouvable{});
    return std::unexpected(CodeIntrouvable{contexte_.emplacements.cheminsEssayesPourLeServeur()});
  }
  lignes_->vider();
  const auto environnement = environnementDuServeur(contexte_.environnement, socle::Reglages::maison());

  // Le verrou couvre le lancement : qui interdit de lancer sait ensuite à quoi s’en tenir.
  const std::lock_guard garde(verrouEtat_);
  if (lancementInterdit_)
    return std::unexpected(LancementImpossible{texteDuSysteme(std::errc::operation_canceled)});
  auto processus =
      socle::Processus::lancer({commande->programme, commande->arguments, commande->dossier, environnement},
                               [lignes = std::weak_ptr(lignes_)](std::string_view bloc) {
                                 if (const auto encoreLa = lignes.lock()) encoreLa->noter(bloc);
                               });
  if (!processus) return std::unexpected(LancementImpossible{processus.error()});
  processus_ = *processus;
  nousLavonsAllume_ = true;
  return *processus;
}

Demarrage MoteurServeur::attendreLaReponse(const ProcessusPartage& processus, int port) {
  auto& horloge = *contexte_.horloge;
  const double debut = horloge.maintenant();
  for (int tour = 1; horloge.maintenant() - debut < delaiDeReponse; ++tour) {
    if (auto issue = unTour(processus, port, tour)) return *std::move(issue);
    horloge.dormir(entreDeuxTours);
  }
  return std::unexpected(PasDeReponse{port, static_cast<int>(delaiDeReponse), lignes_->texte()});
}

std::optional<Demarrage> MoteurServeur::unTour(const ProcessusPartage& processus, int port, int tour) {
  if (!processus->tourne()) return conclureApresUneFin(processus);
  if (cEstBienKeltrove(port)) return allumer(processus, port);
  if (tour % toursEntreDeuxRecherchesDePort != 0) return std::nullopt;
  for (const int autre : portsEcoutesPar(processus->pid()))
    if (autre != port && cEstBienKeltrove(autre)) return allumer(processus, autre);
  return std::nullopt;
}

Demarrage MoteurServeur::conclureApresUneFin(const ProcessusPartage& processus) {
  if (const int souhaite = portSouhaite(); cEstBienKeltrove(souhaite)) {
    oublierLeProcessus();
    return rattacher(souhaite);
  }
  processus->viderLaSortie();
  auto texte = lignes_->texte();
  if (texte.contains("MODIFIE=")) return std::unexpected(CodeModifie{});
  return std::unexpected(MortAuDemarrage{std::move(texte)});
}

void MoteurServeur::oublierLeProcessus() {
  const std::lock_guard garde(verrouEtat_);
  processus_ = nullptr;
}

Demarrage MoteurServeur::rattacher(int port) {
  const std::lock_guard garde(verrouEtat_);
  port_ = port;
  nousLavonsAllume_ = false;
  return Rattache{port};
}

Demarrage MoteurServeur::allumer(const ProcessusPartage& processus, int port) {
  // Un lanceur qui vient de finir pendant que l’on sondait : ce qui répond n’est plus à nous.
  if (!processus->tourne()) return conclureApresUneFin(processus);
  {
    const std::lock_guard garde(verrouEtat_);
    port_ = port;
  }
  // Faible dans les deux sens : ni le moteur ni le processus ne doivent se garder en vie l’un l’autre.
  processus->surveillerLaFin([moi = weak_from_this(), qui = std::weak_ptr(processus)] {
    const auto moteur = moi.lock();
    const auto celuiCi = qui.lock();
    if (moteur && celuiCi) moteur->signalerLaMort(celuiCi);
  });
  return Allume{port};
}

void MoteurServeur::signalerLaMort(const ProcessusPartage& processus) {
  {
    const std::lock_guard garde(verrouEtat_);
    if (processus_ != processus || arretDemande_) return;
  }
  processus->viderLaSortie();
  contexte_.boucle->poster([moi = weak_from_this(), erreur = PerduEnRoute{lignes_->texte()}] {
    const auto moteur = moi.lock();
    if (moteur && moteur->quandLeServeurMeurt) moteur->quandLeServeurMeurt(erreur);
  });
}

} // namespace keltrove::moteur
