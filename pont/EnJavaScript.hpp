// enJavaScript : un texte quelconque, en littéral de script sans danger.
#pragma once

#include <string>
#include <string_view>

namespace keltrove::pont {

// Un littéral de texte JSON, guillemets compris, dont la barre oblique est protégée elle aussi : il ne ferme
// ni le texte, ni un élément de script. Ce qui n’est pas en UTF-8 donne le texte vide. Sans état :
// utilisable depuis tout fil.
std::string enJavaScript(std::string_view texte);

} // namespace keltrove::pont
