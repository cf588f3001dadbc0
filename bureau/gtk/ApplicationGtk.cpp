#include "bureau/gtk/ApplicationGtk.hpp"

#include "bureau/gtk/EcranPerdu.hpp"

#include <csignal>

#include <glib-unix.h>

namespace keltrove::bureau {

ApplicationGtk::ApplicationGtk(std::shared_ptr<moteur::MoteurServeur> moteur,
                               std::shared_ptr<socle::BoucleEvenements> boucle,
                               socle::Environnement environnement)
    : Gtk::Application(KELTROVE_IDENTIFIANT, Gio::Application::Flags::NON_UNIQUE),
      environnement_(std::move(environnement)), notifications_(environnement_),
      delegue_(std::make_unique<app::DelegueApplication>(std::move(moteur), std::move(boucle))) {
  delegue_->quandOnVeutQuitter = [this] { demanderLaFermeture(); };
  delegue_->quandOnPeutPartir = [this] { partir(); };
}

ApplicationGtk::~ApplicationGtk() = default;

void ApplicationGtk::on_activate() {
  if (fenetre_) {
    fenetre_->mettreDevant();
    return;
  }
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
  for (const int signal : {SIGTERM, SIGINT, SIGHUP})
    g_unix_signal_add(
        signal,
        [](gpointer moi) -> gboolean {
          static_cast<ApplicationGtk*>(moi)->demanderLaFermeture();
          return G_SOURCE_CONTINUE;
        },
        this);
}

void ApplicationGtk::demanderLaFermeture() {
  if (delegue_->applicationShouldTerminate() == app::ReponseFermeture::maintenant) partir();
}

void ApplicationGtk::partir() {
  fenetre_->retenirLaTaille();
  quit();
}

} // namespace keltrove::bureau
