import { preferer } from '/reglages.js';

const avertissement = document.querySelector('#sans-lecteur');

// L’application pose, avant ou après ce script, ce que le bureau sait d’un lecteur d’écran : s’il tourne, et s’il voit la
// page à travers elle. Dans un navigateur, personne ne le dit.
function suivre() {
  const { tourne, voitLaPage } = window.keltroveLecteur;
  avertissement.hidden = voitLaPage;
  preferer('lecteur', tourne && voitLaPage);
}

avertissement.querySelector('span').textContent = location.origin;
addEventListener('lecteur', suivre);
if (window.keltroveLecteur) suivre();
