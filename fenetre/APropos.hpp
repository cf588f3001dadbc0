// APropos : ce que l’application dit d’elle-même.
#pragma once

namespace keltrove::fenetre::APropos {

inline constexpr const char* nom = "Keltrove";
inline constexpr const char* version = "Version " KELTROVE_VERSION;
inline constexpr const char* objet = "Une fenêtre native pour votre page de terminaux.";
inline constexpr const char* licence =
    "Logiciel libre, sous licence MIT : vous pouvez l’utiliser, le modifier et "
    "le partager, sans garantie d’aucune sorte.";

} // namespace keltrove::fenetre::APropos
