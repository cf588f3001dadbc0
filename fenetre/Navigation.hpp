// Navigation : où une adresse demandée par la page doit s’ouvrir.
#pragma once

#include "socle/BoucleEvenements.hpp"

#include <cstddef>
#include <deque>
#include <string_view>

namespace keltrove::fenetre {

enum class Destination {
  cetteFenetre,
  navigateur, // celui du bureau : la page de terminaux, elle, reste
  nullePart,
};

// Ce que la page ouvre chez elle reste ici ; le Web et le courrier vont au navigateur ; le reste (fichiers,
// autres protocoles) n’a rien à faire dans une page. `origine` est celle de la page servie,
// `http://hôte:port`, vide tant qu’il n’y en a pas ; `adresse` est sous sa forme canonique (WHATWG URL).
// Tous les noms de cette machine (localhost, 127.0.0.1, [::1]) mènent à la même page ; une adresse illisible
// ne mène nulle part.
Destination destinationDe(std::string_view adresse, std::string_view origine);

// Une fenêtre de plus n’est jamais la nôtre, même pour une adresse de la page.
Destination destinationDUneFenetreNeuve(std::string_view adresse);

enum class Geste { deLUtilisateur, aucun };

// Les liens que la page envoie au navigateur : sur un geste de l’utilisateur seulement, et jamais à la
// chaîne, fût-ce d’un seul geste.
class LiensSortants {
public:
  static constexpr std::size_t maximum = 10;
  static constexpr double periode = 10; // secondes

  // La boucle lui survit.
  explicit LiensSortants(socle::BoucleEvenements& boucle) : boucle_(boucle) {}

  // Faux : le lien se perd, sans un mot. Vrai le compte parmi les derniers.
  bool laisserPartir(Geste geste);

private:
  socle::BoucleEvenements& boucle_;
  std::deque<socle::Minuteur> departs_; // les derniers, chacun le temps qu’il compte
};

} // namespace keltrove::fenetre
