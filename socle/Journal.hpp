// Journal : les étapes nommées du démarrage et de la vie de l’application.
//
// Chaque étape s’imprime aussitôt sur la sortie d’erreur et reste en mémoire avec son heure depuis la
// première. En mode essai, la liste entière est aussi réécrite dans Reglages::cheminEtatEssai() après chaque
// étape. Le journal n’échoue jamais : ce qui ne peut être écrit est perdu sans bruit. Rien ne borne le nombre
// d’étapes : n’en noter que de rares. Utilisable depuis tout fil ; deux étapes notées au même instant
// s’impriment dans un ordre quelconque.
//
// Le programme et le module du bureau ont chacun le leur (voir app/ModuleBureau.hpp).
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

// Le nom : des mots français en minuscules, joints par des traits d’union. « etape » et « seconde » ne
// peuvent pas être des clés : elles seraient remplacées.
void etape(std::string_view nom, const Details& details = {});

// Toutes les étapes, dans l’ordre où elles ont été notées ; chacune compte ses détails, « etape » (un texte)
// et « seconde » (un double, depuis la première étape, au centième).
std::vector<Details> etapes();

// Les paires clé=valeur, triées et séparées d’une espace, telles qu’imprimées. Les textes n’y sont ni
// protégés ni coupés.
std::string resume(const Details& details);

// Le contenu du fichier du mode essai ; rien si une valeur n’a pas de forme en JSON : un nombre infini ou
// indéfini, un texte qui n’est pas en UTF-8.
std::optional<std::string> enJSON(const std::vector<Details>& etapes);

// Au centième de seconde, la moitié s’éloignant de zéro.
double auCentieme(double secondes);

} // namespace keltrove::socle::Journal
