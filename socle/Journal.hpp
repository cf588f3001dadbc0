// Journal : les étapes nommées du démarrage et de la vie de l’application.
//
// Chaque étape s’imprime aussitôt sur la sortie d’erreur et reste en mémoire avec son heure depuis la
// première. En mode essai, la liste entière est aussi réécrite dans Reglages::cheminEtatEssai() après chaque
// étape. Le journal n’échoue jamais : ce qui ne peut être écrit est perdu sans bruit. Utilisable depuis tout
// fil.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace keltrove::socle::Journal {

using Valeur = std::variant<std::string, std::int64_t, double, bool>;
using Details = std::map<std::string, Valeur>;

void etape(std::string_view nom, const Details& details = {});

// Toutes les étapes, dans l’ordre ; chacune compte ses détails, « etape » et « seconde ».
std::vector<Details> etapes();

// Les paires clé=valeur, triées et séparées d’une espace.
std::string resume(const Details& details);

// Le contenu du fichier du mode essai ; rien si une valeur n’a pas de forme en JSON.
std::optional<std::string> enJSON(const std::vector<Details>& etapes);

// Au centième de seconde, la moitié s’éloignant de zéro.
double auCentieme(double secondes);

} // namespace keltrove::socle::Journal
