// SignauxCocoa : les signaux de fin, attendus sur un fil à part. Seuls, ils arrêteraient l’application sans
// passer par la fermeture.
#pragma once

#include <functional>

#include <signal.h>

namespace keltrove::bureau {

// Retient ceux que l’on écoutera ; un qui vient entre-temps attend. Avant tout autre fil, qui recevrait sinon
// à sa place.
sigset_t retenirLesSignaux();
// `quandIlEnVient` est appelé sur ce fil-là. Sans fil à donner, les rend au système.
void ecouterLesSignaux(const sigset_t& signaux, std::function<void()> quandIlEnVient);

} // namespace keltrove::bureau
