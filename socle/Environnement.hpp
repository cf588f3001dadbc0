// Environnement : les variables d’un processus, comme une valeur que l’on copie et que l’on modifie.
//
// L’application prend cette copie avant tout réglage de la boîte à outils : c’est elle, et non
// l’environnement courant, qui est transmise au serveur.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace keltrove::socle {

class Environnement {
public:
  Environnement() = default;
  // Une copie du nôtre, à cet instant.
  static Environnement duProcessus();
  // `variables` : un tableau de « NOM=valeur » terminé par un pointeur nul, tel que `environ`. Si un nom
  // revient, sa première valeur compte, comme pour getenv ; une entrée sans « = » est écartée.
  explicit Environnement(const char* const* variables);

  // Rien si la variable est absente ; une variable vide ne l’est pas.
  std::optional<std::string> lire(std::string_view nom) const;
  // Remplace ou ajoute, dans cette copie seulement : le processus n’en sait rien.
  void definir(std::string_view nom, std::string_view valeur);
  // Des « NOM=valeur », chaque nom une fois, dans l’ordre de leur venue.
  const std::vector<std::string>& entrees() const { return entrees_; }

private:
  std::vector<std::string> entrees_;
};

} // namespace keltrove::socle
