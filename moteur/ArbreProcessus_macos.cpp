#include "moteur/ArbreParOutils.hpp"
#include "moteur/ArbreProcessus.hpp"

#include <csignal>
#include <optional>

#include <sys/sysctl.h>

namespace keltrove::moteur {
namespace {

std::optional<kinfo_proc> lireFiche(pid_t pid) {
  int question[] = {CTL_KERN, KERN_PROC, KERN_PROC_PID, pid};
  kinfo_proc fiche{};
  std::size_t taille = sizeof fiche;
  // Un processus inconnu n’est pas un échec : la réponse est vide.
  if (::sysctl(question, std::size(question), &fiche, &taille, nullptr, 0) != 0 || taille < sizeof fiche)
    return std::nullopt;
  return fiche;
}

std::uint64_t naissanceDe(const kinfo_proc& fiche) {
  constexpr std::uint64_t microsecondes = 1'000'000;
  const auto& debut = fiche.kp_proc.p_starttime;
  return static_cast<std::uint64_t>(debut.tv_sec) * microsecondes + static_cast<std::uint64_t>(debut.tv_usec);
}

} // namespace

std::vector<pid_t> descendants(pid_t pid, int profondeur) {
  return descendantsSelonPgrep("/usr/bin/pgrep", pid, profondeur);
}

std::vector<int> portsEcoutesPar(pid_t pid) {
  return portsSelonLsof("/usr/sbin/lsof", pid);
}

Identite identifier(pid_t pid) {
  const auto fiche = lireFiche(pid);
  return {pid, fiche ? naissanceDe(*fiche) : 0};
}

bool enVie(const Identite& identite) {
  if (::kill(identite.pid, 0) != 0) return false;
  const auto fiche = lireFiche(identite.pid);
  return fiche && fiche->kp_proc.p_stat != SZOMB && naissanceDe(*fiche) == identite.naissance;
}

} // namespace keltrove::moteur
