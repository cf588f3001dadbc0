// LangueAVirgule : le processus en français, où un nombre s’écrirait « 2,5 ».
#pragma once

#include "MaisonTemporaire.hpp"

#include <clocale>
#include <cstdlib>
#include <string>

namespace keltrove::essais {

class LangueAVirgule {
public:
  LangueAVirgule() {
    // La langue est compilée sur place : la machine peut n’en avoir installé aucune.
    const auto dossier = maison_.chemin("langues");
    maison_.ecrire("langues/.vide", "");
    const auto commande = "localedef -i fr_FR -f UTF-8 \"" + dossier + "/fr_FR.UTF-8\" >/dev/null 2>&1";
    // localedef rend 1 pour de simples avertissements : seul le point décimal dit s’il a réussi.
    [[maybe_unused]] const int etat = std::system(commande.c_str());
    ::setenv("LOCPATH", dossier.c_str(), 1);
    std::setlocale(LC_ALL, "fr_FR.UTF-8");
  }
  ~LangueAVirgule() {
    std::setlocale(LC_ALL, "C");
    ::unsetenv("LOCPATH");
  }
  LangueAVirgule(const LangueAVirgule&) = delete;
  LangueAVirgule& operator=(const LangueAVirgule&) = delete;

  static bool active() { return std::string(std::localeconv()->decimal_point) == ","; }

private:
  MaisonTemporaire maison_;
};

} // namespace keltrove::essais
