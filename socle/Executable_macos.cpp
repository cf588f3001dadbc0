#include "socle/Executable.hpp"

#include <cstdint>
#include <filesystem>
#include <system_error>

#include <mach-o/dyld.h>

namespace keltrove::socle {

std::optional<std::string> cheminDeLExecutable() {
  std::uint32_t taille = 0;
  ::_NSGetExecutablePath(nullptr, &taille); // la taille qu’il lui faut, zéro final compris
  std::string chemin(taille, '\0');
  if (::_NSGetExecutablePath(chemin.data(), &taille) != 0) return std::nullopt;
  std::error_code erreur;
  const auto resolu = std::filesystem::canonical(chemin.c_str(), erreur);
  if (erreur) return std::nullopt;
  return resolu.string();
}

} // namespace keltrove::socle
