// La fermeture : laisser en paix un serveur qui n’est pas le nôtre, attendre celui que nous avons allumé.

#include "app/DelegueApplication.hpp"
#include "socle/Journal.hpp"

namespace keltrove::app {

namespace Journal = socle::Journal;

ReponseFermeture DelegueApplication::applicationShouldTerminate() {
  if (fermetureEnCours_) return ReponseFermeture::plusTard;
  fermetureEnCours_ = true;
  surveillance_.arreter();
  // La fin d’une session atteint aussi les processus de la page : leur mort n’est plus une nouvelle.
  if (fenetre_) fenetre_->ignorerLaPage();
  moteur_->neLancerPlusRien();
  if (!moteur_->nousLavonsAllume()) {
    Journal::etape("quitte-sans-toucher-au-serveur");
    return ReponseFermeture::maintenant;
  }
  Journal::etape("arret-demande");
  fenetre_->ecran().montrerAttente("Fermeture…",
                                   "Je laisse le serveur noter la liste des terminaux avant de partir.");
  moteur_->arreter(temoin_.garder([this](const std::string& message) {
    Journal::etape("arret-fini", {{"message", message}});
    bureau_.partir();
  }));
  return ReponseFermeture::plusTard;
}

void DelegueApplication::partirSansEcran() {
  if (fermetureEnCours_) return; // le signal est déjà parti
  fermetureEnCours_ = true;
  moteur_->neLancerPlusRien();
  if (!moteur_->nousLavonsAllume()) {
    Journal::etape("quitte-sans-toucher-au-serveur");
    return;
  }
  Journal::etape("arret-demande");
  Journal::etape("arret-fini", {{"message", moteur_->arreterEnAttendant()}});
}

} // namespace keltrove::app
