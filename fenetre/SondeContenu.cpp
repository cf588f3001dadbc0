#include "fenetre/SondeContenu.hpp"

#include "socle/LireNombre.hpp"
#include "socle/Texte.hpp"

#include <cstdint>

namespace keltrove::fenetre {
namespace {

std::int64_t lireEntier(std::string_view texte) {
  if (texte.starts_with('+') && !texte.starts_with("+-")) texte.remove_prefix(1);
  return socle::lireNombre<std::int64_t>(texte).value_or(0);
}

} // namespace

const std::string expressionDeSonde =
    "document.title + '|' + document.querySelectorAll('*').length + '|' + "
    "(document.querySelector('meta[name=keltrove-jeton]')?.content === '__JETON__' ? "
    "'jeton-non-rempli' : 'jeton-rempli')";

socle::Journal::Details lireSonde(std::string_view reponse) {
  const auto morceaux = socle::decouper(reponse, '|', socle::MorceauxVides::ecartes);
  const auto morceau = [&](std::size_t i) { return i < morceaux.size() ? morceaux[i] : std::string("?"); };
  return {{"titre", morceau(0)}, {"elements", lireEntier(morceau(1))}, {"cle", morceau(2)}};
}

} // namespace keltrove::fenetre
