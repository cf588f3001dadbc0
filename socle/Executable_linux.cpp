#include "socle/Executable.hpp"

#include <filesystem>
#include <system_error>

namespace keltrove::socle {

std::optional<std::string> cheminDeLExecutable() {
  std::error_code erreur;
  const auto chemin = std::filesystem::read_symlink("/proc/self/exe", erreur);
  if (erreur) return std::nullopt;
  return chemin.string();
}

} // namespace keltrove::socle
