// TablesDePrises : les prises TCP à l’écoute, telles que les tables du noyau Linux les donnent.
//
// La lecture est la même partout ; seul Linux en a les fichiers. Utilisable depuis tout fil.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace keltrove::moteur {

// Dans l’ordre du réseau ; une adresse IPv4 y est « ::ffff:a.b.c.d », où l’attend aussi une prise IPv6.
using AdresseIP = std::array<std::uint8_t, 16>;

struct PriseALEcoute {
  AdresseIP adresse{};
  int port = 0;
  uid_t compte = 0;   // celui qui l’a ouverte
  std::string numero; // celui que montre /proc/<pid>/fd
  bool operator==(const PriseALEcoute&) const = default;
};

// Une table, IPv4 ou IPv6, telle que /proc/net/tcp ou tcp6 l’écrit (proc(5)). Les lignes illisibles et les
// prises qui n’écoutent pas sont écartées.
std::vector<PriseALEcoute> lireTableDePrises(std::string_view texte);

// Les deux tables de ce dossier, « tcp » puis « tcp6 ». Rien si l’une ne peut pas être lue ; un noyau sans
// IPv6 n’a pas la seconde, et ce n’est pas un échec.
std::optional<std::vector<PriseALEcoute>> lireTablesDePrises(const std::filesystem::path& dossier);

} // namespace keltrove::moteur
