#include "socle/LancementProcessus.hpp"

namespace keltrove::socle {

std::vector<char*> tableauC(const std::vector<std::string>& textes) {
  std::vector<char*> tableau;
  tableau.reserve(textes.size() + 1);
  for (const auto& texte : textes)
    tableau.push_back(const_cast<char*>(texte.c_str()));
  tableau.push_back(nullptr);
  return tableau;
}

} // namespace keltrove::socle
