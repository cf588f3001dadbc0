#include "bureau/gtk/ApplicationGtk.hpp"

#include "bureau/gtk/EcranPerdu.hpp"
#include "bureau/gtk/NavigateurDuBureau.hpp"
#include "socle/Reglages.hpp"
#include "socle/SignauxDeFin.hpp"

#include <glib-unix.h>

namespace keltrove::bureau {
namespace {

namespace Reglages = socle::Reglages;
using Partage = Gio::Application::Flags;

Partage partage() {
  return Reglages::accessoire() ? Partage::NON_UNIQUE : Partage::NONE;
}

} // namespace

ApplicationGtk::ApplicationGtk(std::shared_ptr<moteur::MoteurServeur> moteur,
                               std::shared_ptr<socle::BoucleEvenements> boucle,
                               socle::Environnement environnement)
    : Gtk::Application(KELTROVE_IDENTIFIANT, partage()), environnement_(std::move(environnement)),
      notifications_(environnement_), delegue_(std::move(moteur), std::move(boucle), *this) {}

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
  if (fenetre_ != nullptr)
    delegue_.quandOnNousRelance();
  else
    ouvrir();
}

void ApplicationGtk::ouvrir() {
  hold(); // en mode essai, aucune fenêtre visible ne retient l’application
  ecouterLesSignaux();
  quandLEcranDisparait([this] {
    if (fenetre_ != nullptr) fenetre_->retenirLaTaille();
    delegue_.partirSansEcran();
  });
  delegue_.applicationDidFinishLaunching();
}

std::unique_ptr<fenetre::VueFenetre>
ApplicationGtk::creerLaFenetre(fenetre::ObservateurDeLaVue& observateur) {
  auto fenetre = std::make_unique<FenetreGtk>(observateur, [this] { demanderLaFermeture(); });
  fenetre_ = fenetre.get();
  notifications_.applicationDevant = [this] { return fenetre_->is_active(); };
  notifications_.quandUnJetonArrive = [this](const std::string& jeton) { fenetre_->recevoirLeJeton(jeton); };
  add_window(*fenetre_);
  return fenetre;
}

void ApplicationGtk::ecouterLesSignaux() {
  for (const int signal : socle::signauxDeFin())
    g_unix_signal_add(
        signal,
        [](gpointer moi) -> gboolean {
          static_cast<ApplicationGtk*>(moi)->demanderLaFermeture();
          return G_SOURCE_CONTINUE;
        },
        this);
}

void ApplicationGtk::ouvrirDansLeNavigateur(const std::string& adresse, std::function<void()> rate) {
  bureau::ouvrirDansLeNavigateur(adresse, environnement_, std::move(rate));
}

void ApplicationGtk::demanderLaFermeture() {
  // Dès la demande : la fin d’une session peut ne pas laisser finir.
  fenetre_->retenirLaTaille();
  if (delegue_.applicationShouldTerminate() == app::ReponseFermeture::maintenant) partir();
}

void ApplicationGtk::partir() {
  quit();
}

} // namespace keltrove::bureau
