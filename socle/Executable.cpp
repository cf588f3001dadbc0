#include "socle/Executable.hpp"

#include "socle/Fichiers.hpp"

#include <filesystem>
#include <system_error>

namespace keltrove::socle {

std::optional<std::string> dossierDesRessources(const std::string& executable) {
  const auto dossier = dossierDe(executable);
  std::error_code erreur;
  for (const auto* candidat : {"ressources", "../share/keltrove", "../Resources"}) {
    auto chemin = ajouterComposant(dossier, candidat);
    if (std::filesystem::is_directory(chemin, erreur))
      return std::filesystem::path(chemin).lexically_normal().string();
  }
  return std::nullopt;
}

} // namespace keltrove::socle
