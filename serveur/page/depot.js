import { citerTous } from '/citation.js';
import { choisie, choisir } from '/terminaux.js';

// Le premier qui se lit compte.
const TEXTES = ['text/plain', 'text/uri-list'];

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

// Un texte ou un lien, d’un autre programme ou de la page elle-même, s’écrit comme un collage dans le terminal visé. Hors
// d’un champ, le navigateur n’en fait rien d’autre : un lien remplacerait la page.
const auDessus = (faire) => (evenement) => {
  if (evenement.target.closest?.('input')) return;
  evenement.preventDefault();
  const texte = evenement.dataTransfer.types.some((type) => TEXTES.includes(type)) && !evenement.target.closest?.('dialog');
  faire(evenement, texte);
};

for (const nom of ['dragenter', 'dragover']) {
  addEventListener(nom, auDessus(({ dataTransfer, clientX, clientY }, texte) => {
    dataTransfer.dropEffect = texte ? 'copy' : 'none';
    marquer(texte ? viser(clientX, clientY) : null);
  }));
}
addEventListener('dragleave', () => marquer(null));
addEventListener('drop', auDessus(({ dataTransfer, clientX, clientY }, texte) => {
  marquer(null);
  const depose = texte && TEXTES.map((type) => dataTransfer.getData(type)).find(Boolean);
  if (!depose) return;
  choisir(viser(clientX, clientY));
  choisie().coller(depose);
}));

function viser(x, y) {
  return document.elementFromPoint(x, y)?.closest('[data-terminal]')?.dataset.terminal ?? choisie()?.id;
}

// L’onglet et le panneau d’un même terminal se marquent ensemble.
function marquer(id) {
  for (const element of document.querySelectorAll('[data-terminal]')) {
    element.classList.toggle('vise', element.dataset.terminal === id);
  }
}
