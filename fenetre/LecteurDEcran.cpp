#include "fenetre/LecteurDEcran.hpp"

#include <fmt/format.h>

namespace keltrove::fenetre {

std::string annonceALaPage(const LecteurDEcran& lecteur) {
  return fmt::format("window.keltroveLecteur = {{ tourne: {}, voitLaPage: {} }}; "
                     "window.dispatchEvent(new Event('lecteur'));",
                     lecteur.tourne, lecteur.voitLaPage);
}

} // namespace keltrove::fenetre
