#include "bureau/gtk/BacASable.hpp"

#include "bureau/gtk/EssaiDeLancement.hpp"

#include <cstdlib>

namespace keltrove::bureau {

bool renoncerAuBacASableRefuse() {
  constexpr const char* variable = "WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS";
  if (std::getenv(variable) != nullptr) return false;
  // Les mêmes cloisons que celles dont WebKit se sert.
  const char* const arguments[] = {
      "bwrap", "--die-with-parent", "--unshare-all", "--ro-bind", "/", "/", "--proc", "/proc", "--dev",
      "/dev",  "/bin/true",         nullptr};
  // Une machine à court de processus n’a rien refusé.
  if (essayerDeLancer(arguments) != Lancement::rate) return false;
  ::setenv(variable, "1", 1);
  return true;
}

} // namespace keltrove::bureau
