// SondeContenu : ce que la page affichée contient, pour le journal ; cela ne décide rien.
#pragma once

#include "socle/Journal.hpp"

#include <string>
#include <string_view>

namespace keltrove::fenetre {

// L’expression évaluée dans la page : titre, nombre d’éléments et état du jeton, séparés par « | ».
extern const std::string expressionDeSonde;

// Les détails de l’étape « page-contenu » : « titre », « elements » (un entier, 0 s’il ne se lit pas) et
// « cle » (« jeton-rempli » ou « jeton-non-rempli », jamais le jeton). Ce qui manque vaut « ? ». Les morceaux
// vides sont écartés : un titre vide décale les deux autres, et c’est voulu.
socle::Journal::Details lireSonde(std::string_view reponse);

} // namespace keltrove::fenetre
