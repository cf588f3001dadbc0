#include "moteur/ArbreParOutils.hpp"

#include "moteur/AnalyseOutils.hpp"
#include "moteur/SortieDOutil.hpp"

namespace keltrove::moteur {

std::vector<pid_t> descendantsSelonPgrep(const std::string& pgrep, pid_t pid, int profondeur) {
  std::vector<pid_t> liste;
  if (profondeur <= 0) return liste;
  for (const auto enfant : lirePgrep(sortieDe({pgrep, "-P", std::to_string(pid)}))) {
    liste.push_back(enfant);
    const auto siens = descendantsSelonPgrep(pgrep, enfant, profondeur - 1);
    liste.insert(liste.end(), siens.begin(), siens.end());
  }
  return liste;
}

std::vector<int> portsSelonLsof(const std::string& lsof, pid_t pid) {
  return lireLsof(sortieDe({lsof, "-nP", "-a", "-p", std::to_string(pid), "-iTCP", "-sTCP:LISTEN"}));
}

} // namespace keltrove::moteur
