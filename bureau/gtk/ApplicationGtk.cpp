#include "bureau/gtk/ApplicationGtk.hpp"

#include "bureau/gtk/EcranPerdu.hpp"
#include "socle/Reglages.hpp"

#include <csignal>

#include <glib-unix.h>

namespace keltrove::bureau {
namespace {

namespace Reglages = socle::Reglages;
using Partage = Gio::Application::Flags;

Partage partage() {
  return Reglages::modeEssai() || Reglages::modeDiscret() ? Partage::NON_UNIQUE : Partage::NONE;
}

bool estIgnore(int signal) {
  struct sigaction action{};
  return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

} // namespace

ApplicationGtk::ApplicationGtk(std::shared_ptr<moteur::MoteurServeur> moteur,
                               std::shared_ptr<socle::BoucleEvenements> boucle,
                               socle::Environnement environnement)
    : Gtk::Application(KELTROVE_IDENTIFIANT, partage()), environnement_(std::move(environnement)),
      notifications_(environnement_),
      delegue_(std::make_unique<app::DelegueApplication>(std::move(moteur), std::move(boucle))) {
  delegue_->quandOnVeutQuitter = [this] { demanderLaFermeture(); };
  delegue_->quandOnPeutPartir = [this] { partir(); };
}

ApplicationGtk::~ApplicationGtk() = default;

void ApplicationGtk::sInscrire() {
  try {
    register_application();
  } catch (const Glib::Error&) {
    // Celle qui tient le nom est figée : une seconde fenêtre vaut mieux que rien du tout.
    set_flags(Partage::NON_UNIQUE);
  }
}

void ApplicationGtk::on_activate() {
  if (seFerme_)
    aRouvrir_ = true;
  else if (fenetre_)
    fenetre_->mettreDevant();
  else
    ouvrir();
}

void ApplicationGtk::ouvrir() {
  hold(); // en mode essai, aucune fenêtre visible ne retient l’application
  fenetre_ = std::make_unique<FenetreGtk>(environnement_);
  fenetre_->quandOnFerme = [this] { demanderLaFermeture(); };
  notifications_.applicationDevant = [this] { return fenetre_->is_active(); };
  notifications_.quandUnJetonArrive = [this](const std::string& jeton) { fenetre_->recevoirLeJeton(jeton); };
  add_window(*fenetre_);
  ecouterLesSignaux();
  quandLEcranDisparait([this] { delegue_->partirSansEcran(); });
  delegue_->applicationDidFinishLaunching(*fenetre_, notifications_);
}

void ApplicationGtk::ecouterLesSignaux() {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    // Qui nous a lancés par « nohup », ou à l’arrière-plan d’un script, veut que nous y survivions.
    if (estIgnore(signal)) continue;
    g_unix_signal_add(
        signal,
        [](gpointer moi) -> gboolean {
          static_cast<ApplicationGtk*>(moi)->demanderLaFermeture();
          return G_SOURCE_CONTINUE;
        },
        this);
  }
}

void ApplicationGtk::demanderLaFermeture() {
  seFerme_ = true;
  if (delegue_->applicationShouldTerminate() == app::ReponseFermeture::maintenant) partir();
}

void ApplicationGtk::partir() {
  fenetre_->retenirLaTaille();
  quit();
}

} // namespace keltrove::bureau
