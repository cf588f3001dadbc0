// CentreNotifications : les notifications du système, vues du pont.
//
// Chaque bureau en donne un. Aucune opération n’attend : les réponses viennent une fois, tout de suite ou
// plus tard, ou jamais si le centre disparaît avant. Un échec n’est qu’une réponse : rien n’est montré à
// l’utilisateur. Fil principal seulement.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <variant>

namespace keltrove::pont {

enum class Autorisation {
  accordee,
  refusee,
  indeterminee, // l’utilisateur n’a pas encore été consulté
  absente,      // le centre est hors d’atteinte
};

struct Notification {
  std::string identifiant;             // celle du même identifiant est remplacée
  std::string titre;                   // texte simple, à montrer tel quel
  std::string corps;                   // texte simple, à montrer tel quel
  std::optional<std::string> terminal; // où mène son clic ; sans lui, à la fenêtre seulement
  bool operator==(const Notification&) const = default;
};

// Là où une notification nomme ce que son clic fait.
inline constexpr const char* titreDuClic = "Ouvrir";

// Ce qu’est devenue une notification. Posée ne veut pas dire vue : le service peut la taire ou la remettre.
struct Posee {};
struct Refusee {
  std::string description; // le texte du système
};
struct CentreAbsent {};
using Remise = std::variant<Posee, Refusee, CentreAbsent>;

// Qui décide de ce qu’un clic fait. Appelé sur le fil principal, parfois du milieu d’un appel du système : il
// remet à plus tard ce qui touche à la fenêtre.
class DelegueDuCentre {
public:
  // `terminal` est celui de la notification cliquée.
  virtual void quandOnClique(const std::optional<std::string>& terminal) = 0;

protected:
  ~DelegueDuCentre() = default;
};

class CentreNotifications {
public:
  virtual ~CentreNotifications() = default;

  // Ce que le système permet à cet instant ; l’utilisateur n’est pas consulté.
  virtual void lireLesReglages(std::function<void(Autorisation)> fini) = 0;
  // Alertes et son. Consulte l’utilisateur si le système le demande.
  virtual void demanderLAutorisation(std::function<void(bool accordee)> fini) = 0;
  // Avec le son par défaut du système, sans délai. `fini` ne vient pas pour une notification qu’une plus
  // récente du même identifiant a remplacée avant son départ.
  virtual void ajouter(const Notification& notification, std::function<void(const Remise&)> fini) = 0;
  // Le panneau des notifications du bureau ; rien s’il n’y en a pas.
  virtual void ouvrirLesReglages() = 0;
  // Retient pour toujours un drapeau levé, sous ce nom. Un disque plein ne coûte que cet oubli.
  virtual void retenir(const std::string& drapeau) = 0;

  // Sans délégué, un clic ne va nulle part, et rien n’est montré tant que l’application est devant. Nul
  // pour n’en plus avoir.
  virtual void deleguerA(DelegueDuCentre* delegue) = 0;
};

} // namespace keltrove::pont
