import { citerTous } from '/citation.js';
import { choisie, choisir } from '/terminaux.js';

// Les fichiers que l’application laisse tomber dans la page : leurs chemins s’écrivent dans le terminal visé.
if (window.keltroveApp?.depotChemins === true) {
  window.keltroveSurvolChemins = (x, y) => marquer(x === null ? null : viser(x, y));
  window.keltroveDeposerChemins = (chemins, x, y) => {
    marquer(null);
    const absolus = chemins.filter((chemin) => typeof chemin === 'string' && chemin.startsWith('/'));
    if (absolus.length === 0) return;
    choisir(viser(x, y));
    choisie().coller(citerTous(absolus));
  };
}

function viser(x, y) {
  return document.elementFromPoint(x, y)?.closest('[data-terminal]')?.dataset.terminal ?? choisie()?.id;
}

// L’onglet et le panneau d’un même terminal se marquent ensemble.
function marquer(id) {
  for (const element of document.querySelectorAll('[data-terminal]')) {
    element.classList.toggle('vise', element.dataset.terminal === id);
  }
}
