// Processus : un programme lancé par l’application, sa sortie et sa fin.
//
// L’enfant reçoit son propre groupe de processus (un Ctrl+C dans le terminal de lancement n’atteint que
// l’application), les signaux par défaut, une entrée vide, un seul tube pour ses deux sorties, et aucun autre
// descripteur. Il est attendu par son seul numéro et ne reste jamais zombie.
//
// Les appels de retour viennent sur des fils d’arrière-plan propres à ce processus. Lâcher le dernier
// `shared_ptr` ne touche pas à l’enfant : ces fils gardent ce dont ils ont besoin jusqu’à sa fin.
#pragma once

#include "socle/Environnement.hpp"

#include <expected>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace keltrove::socle {

struct CommandeProcessus {
  std::string programme; // chemin absolu
  std::vector<std::string> arguments;
  std::string dossier;
  Environnement environnement;
};

class Processus {
public:
  // Reçoit ce qu’une lecture a rendu, 64 Kio au plus ; jamais deux appels à la fois.
  using QuandSortie = std::function<void(std::string_view)>;

  // En cas de refus : le texte du système.
  static std::expected<std::shared_ptr<Processus>, std::string> lancer(const CommandeProcessus& commande,
                                                                       QuandSortie quandSortie);

  pid_t pid() const;
  bool tourne() const;

  // Demande la fin (SIGTERM). Sans effet sur un processus terminé, dont le numéro a pu être réattribué.
  void terminer();

  // Remet à `quandSortie` ce que l’enfant a écrit et qui n’a pas encore été lu. À appeler une fois l’enfant
  // terminé, pour lire ses dernières lignes même si un descendant garde le tube ouvert.
  void viderLaSortie();

  // `quandFini` est appelé une fois, à la fin du processus ; tout de suite si elle a déjà eu lieu.
  void surveillerLaFin(std::function<void()> quandFini);

  struct Etat;
  explicit Processus(std::shared_ptr<Etat> etat);

private:
  std::shared_ptr<Etat> etat_;
};

} // namespace keltrove::socle
