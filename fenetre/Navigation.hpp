// Navigation : où une adresse demandée par la page doit s’ouvrir.
#pragma once

#include <string_view>

namespace keltrove::fenetre {

enum class Destination {
  cetteFenetre,
  navigateur, // celui du bureau : la page de terminaux, elle, reste
  nullePart,
};

// Ce que la page ouvre chez elle reste ici ; le Web et le courrier vont au navigateur ; le reste (fichiers,
// autres protocoles) n’a rien à faire dans une page. `origine` est celle de la page servie, «
// http://hôte:port », et `adresse` est sous sa forme canonique (WHATWG URL).
Destination destinationDe(std::string_view adresse, std::string_view origine);

// Une fenêtre de plus n’est jamais la nôtre, même pour une adresse de la page.
Destination destinationDUneFenetreNeuve(std::string_view adresse);

} // namespace keltrove::fenetre
