// PourLaPage : ce que l’application dit à la page de terminaux, en JavaScript. Une page qui n’écoute pas n’en
// voit rien. Sans état.
#pragma once

#include <string>

#include <nlohmann/json_fwd.hpp>

namespace keltrove::fenetre::PourLaPage {

// L’utilisateur est devant l’application, ou ailleurs.
inline std::string regard(bool ici) {
  return std::string("window.keltrovePont?.regard?.(") + (ici ? "true" : "false") + ")";
}

// Le collage qui suit est celui de la sélection, non du presse-papiers : rien d’autre ne les distingue.
inline constexpr const char* voiciLaSelection = "dispatchEvent(new Event('collerlaselection'))";

// Finit quand un glissement entre dans la page.
inline constexpr const char* attendreUnGlissement =
    "await new Promise((entre) => addEventListener('dragenter', entre, { capture: true, once: true }));";

// Une vue web ne passe ni liste ni objet à une fonction : ceux-ci voyagent en un seul texte, `arguments`, que
// la fonction de corps `fonction` reçoit sous le nom `keltroveArguments`.
struct Appel {
  std::string fonction;
  std::string arguments;
};
Appel appel(const char* corps, const nlohmann::json& arguments);

} // namespace keltrove::fenetre::PourLaPage
