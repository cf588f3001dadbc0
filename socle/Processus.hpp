// Processus : un programme lancé par l’application, sa sortie et sa fin.
//
// L’enfant reçoit son propre groupe de processus (un Ctrl+C dans le terminal de lancement n’atteint que
// l’application), les signaux par défaut, une entrée vide, un seul tube pour ses deux sorties, et aucun autre
// descripteur. Il est attendu par son seul numéro et ne reste jamais zombie.
//
// Les appels de retour viennent sur des fils d’arrière-plan propres à ce processus : un lit le tube, l’autre
// attend la fin. Lâcher le dernier `shared_ptr` ne touche pas à l’enfant : ces fils gardent ce dont ils ont
// besoin jusqu’à sa fin. L’état de sortie de l’enfant n’est pas retenu.
//
// Utilisable depuis tout fil.
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
  std::string programme;              // chemin absolu : PATH n’est pas parcouru
  std::vector<std::string> arguments; // sans le programme
  std::string dossier;                // de travail
  Environnement environnement;
};

class Processus {
public:
  // Reçoit ce qu’une lecture a rendu, 64 Kio au plus, coupé n’importe où ; jamais deux appels à la fois. Ne
  // doit pas appeler viderLaSortie(), qui l’attendrait.
  using QuandSortie = std::function<void(std::string_view)>;

  // Bloque le temps que le système lance l’enfant. En cas de refus, le texte du système dans la langue du
  // processus : programme ou dossier absent, droit manquant, plus de processus, de fil ou de descripteur.
  static std::expected<std::shared_ptr<Processus>, std::string> lancer(const CommandeProcessus& commande,
                                                                       QuandSortie quandSortie);

  // Reste le même une fois l’enfant terminé : ne plus s’en servir alors pour signaler.
  pid_t pid() const;
  // Faux dès que l’enfant est recueilli, avant que `quandFini` ne vienne.
  bool tourne() const;

  // Demande la fin (SIGTERM) à lui seul, non à son groupe. Sans effet sur un processus terminé, dont le
  // numéro a pu être réattribué.
  void terminer();

  // Remet à `quandSortie`, sur le fil appelant, ce que l’enfant a écrit et qui n’a pas encore été lu. À
  // appeler une fois l’enfant terminé, pour lire ses dernières lignes même si un descendant garde le tube
  // ouvert. N’attend pas, et s’arrête au bout de 64 lectures : un descendant bavard ne retient personne.
  void viderLaSortie();

  // `quandFini` est appelé une fois, à la fin du processus ; tout de suite, sur le fil appelant, si elle a
  // déjà eu lieu. Un seul est gardé : le second remplace le premier.
  void surveillerLaFin(std::function<void()> quandFini);

  struct Etat;
  explicit Processus(std::shared_ptr<Etat> etat);

private:
  std::shared_ptr<Etat> etat_;
};

} // namespace keltrove::socle
