// PontNotifications : ce qui joint la page aux notifications du système, dans les deux sens.
//
// La page demande une notification, l’état de la permission ou les réglages ; un clic sur une notification
// ramène la fenêtre devant et ouvre le terminal dans la page. Rien n’est montré à l’utilisateur en cas
// d’échec, et rien ne va au journal. Fil principal seulement.
#pragma once

#include "pont/CentreNotifications.hpp"
#include "pont/MessageDeLaPage.hpp"
#include "socle/BoucleEvenements.hpp"
#include "socle/Temoin.hpp"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace keltrove::pont {

class PontNotifications final : DelegueDuCentre {
public:
  // Le nom sous lequel la page écrit, `window.webkit.messageHandlers.keltroveNotifications`
  // (serveur/page/notifications.js).
  static constexpr const char* nomDuCanal = "keltroveNotifications";

  // Le centre et la boucle survivent au pont.
  PontNotifications(CentreNotifications& centre, socle::BoucleEvenements& boucle);
  PontNotifications(const PontNotifications&) = delete;
  PontNotifications& operator=(const PontNotifications&) = delete;
  ~PontNotifications();

  // Toutes trois posées par qui le crée ; vides, elles ne font rien.
  //
  // Exécute une ligne dans la page ; vide tant qu’il n’y a pas de vue. Résultat et erreurs sont ignorés.
  std::function<void(const std::string& ligne)> vue;
  // Met l’application et sa fenêtre devant les autres.
  std::function<void()> activer;
  // Pour mettre au point : reçoit une ligne par message et par notification. Rien ne s’en sert d’ordinaire.
  std::function<void(const std::string& ligne)> trace;

  // La dernière réponse connue. Rien ne la lit : poser une notification ne la consulte pas.
  bool permissionAccordee() const { return permissionAccordee_; }

  // Un message de la page. Un autre canal, une action inconnue, un message illisible : sans effet. Titre et
  // corps sont ramenés à 80 et 200 caractères perçus.
  void userContentController(std::string_view canal, const MessageDeLaPage& message);
  // Au lancement, une fois. C’est ici seulement que le pont devient le délégué du centre.
  void demanderLaPermissionUneSeuleFois();
  // Redit à la page l’état de la permission : « accorde », « refuse », « attente » ou « absent ».
  void redireLEtat();
  // Celle du même terminal est remplacée. Textes tels quels : à l’appelant de les avoir bornés.
  void poser(const std::optional<std::string>& terminal, const std::string& titre, const std::string& corps);
  // Ceux du système, là où il en a.
  void ouvrirLesReglagesDeNotification();
  // Plus tard, par la boucle ; se perd sans vue.
  void executerDansLaPage(const std::string& ligne);

private:
  void quandOnClique(const std::optional<std::string>& terminal) override;
  void quandLAutorisationEstLue(Autorisation autorisation);
  void direLEtat(const char* etat);
  void direLAccord(bool accorde);
  void tracer(const std::string& ligne) const;

  CentreNotifications& centre_;
  socle::BoucleEvenements& boucle_;
  bool permissionAccordee_ = false;
  // Les réponses du centre peuvent arriver après le pont.
  socle::Temoin temoin_;
};

} // namespace keltrove::pont
