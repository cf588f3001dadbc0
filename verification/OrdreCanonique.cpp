#include "verification/OrdreCanonique.hpp"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

#include <utf8proc.h>

namespace keltrove::verification {
namespace {

std::string formeCanonique(const std::string& texte) {
  if (std::ranges::all_of(texte, [](char c) { return static_cast<unsigned char>(c) < 0x80; })) return texte;
  utf8proc_uint8_t* forme = nullptr;
  const auto longueur = utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(texte.data()),
                                     static_cast<utf8proc_ssize_t>(texte.size()), &forme,
                                     static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE));
  const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> tenue(forme, &std::free);
  if (longueur < 0) return texte;
  return {reinterpret_cast<const char*>(forme), static_cast<std::size_t>(longueur)};
}

// L’ordre des octets de l’UTF-8 est celui des points de code.
using Rang = std::pair<std::string, std::string>;
Rang rangDe(const std::string& texte) {
  return {formeCanonique(texte), texte};
}

} // namespace

void trierSelonLOrdreCanonique(std::vector<std::string>& textes) {
  std::vector<Rang> rangs;
  rangs.reserve(textes.size());
  std::ranges::transform(textes, std::back_inserter(rangs), rangDe);
  std::ranges::sort(rangs);
  std::ranges::transform(rangs, textes.begin(), [](Rang& rang) { return std::move(rang.second); });
}

const std::string& premierSelonLOrdreCanonique(const std::vector<std::string>& textes) {
  return *std::ranges::min_element(textes, {}, rangDe);
}

} // namespace keltrove::verification
