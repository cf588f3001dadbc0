// Emplacements : où se trouvent node, le code du serveur, et la commande exacte qui le démarre.
//
// Rien n’est gardé en mémoire : chaque appel regarde à nouveau, si bien qu’un fichier installé pendant que
// l’application tourne est trouvé à l’essai suivant. Ce que le système de fichiers ne sait pas lire compte
// pour absent. Rien n’est exécuté. Utilisable depuis tout fil.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace keltrove::moteur {

struct CommandeDemarrage {
  std::string programme; // chemin absolu
  std::vector<std::string> arguments;
  std::string dossier; // dossier de travail
  bool operator==(const CommandeDemarrage&) const = default;
};

class Emplacements {
public:
  // L’ordre compte : /usr/local passe avant /opt/homebrew. Le PATH de l’utilisateur n’est pas parcouru.
  static const std::vector<std::string> nodesDuSysteme;

  // Sans dossier de ressources, les candidats qui en dépendent sont simplement omis.
  explicit Emplacements(std::optional<std::string> ressources,
                        std::vector<std::string> nodes = nodesDuSysteme);

  // Le script qui vérifie une copie installée avant de lancer son serveur ; il passe avant tout le reste.
  std::optional<std::string> porteDuLotB() const;
  // Le premier des candidats ci-dessous qui soit exécutable, ou qui existe ; rien s’il n’y en a aucun.
  std::optional<std::string> node() const;
  std::optional<std::string> serveur() const;
  // Ce script s’il est là ; sinon node et le code du serveur ; rien s’il manque l’un des deux.
  std::optional<CommandeDemarrage> commandeDeDemarrage() const;

  // Tous les candidats, dans l’ordre de la recherche : l’écran d’un échec les montre.
  std::vector<std::string> cheminsEssayesPourNode() const;
  std::vector<std::string> cheminsEssayesPourLeServeur() const;

private:
  std::optional<std::string> ressources_;
  std::vector<std::string> nodes_;
};

} // namespace keltrove::moteur
