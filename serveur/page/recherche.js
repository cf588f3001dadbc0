import { choisie, rendreLeFocus } from '/terminaux.js';
import { TROUVAILLES } from '/themes.js';

// La barre où l’on cherche dans le terminal choisi.
const barre = document.querySelector('.recherche');
const champ = barre.querySelector('input');
const compte = barre.querySelector('output');
let vue = null;
let comptage = null;

export function ouvrirLaRecherche() {
  barre.hidden = false;
  suivre(choisie());
  champ.focus();
  champ.select();
}

function fermer() {
  barre.hidden = true;
  suivre(null);
  rendreLeFocus();
}

// Le terminal choisi a changé : on cherche désormais dans celui-là.
function suivre(neuve) {
  if (vue) cesser();
  comptage?.dispose();
  vue = neuve;
  comptage = vue?.recherche.onDidChangeResults(compter);
  if (vue) chercher({ neuf: true });
}

// De bas en haut d’abord : ce que l’on cherche vient le plus souvent de passer.
function chercher({ neuf = false, versLeBas = false } = {}) {
  if (champ.value === '') return cesser();
  if (neuf) vue.terminal.clearSelection();
  vue.recherche[versLeBas ? 'findNext' : 'findPrevious'](champ.value, { decorations: TROUVAILLES });
}

function cesser() {
  vue.recherche.clearDecorations();
  compte.value = '';
}

function compter({ resultIndex, resultCount }) {
  if (champ.value === '') compte.value = '';
  else if (resultCount === 0) compte.value = 'Aucun résultat';
  else compte.value = resultIndex < 0 ? `${resultCount} résultats` : `${resultIndex + 1} sur ${resultCount}`;
}

champ.addEventListener('input', () => chercher({ neuf: true }));
barre.querySelector('.haut').addEventListener('click', () => chercher());
barre.querySelector('.bas').addEventListener('click', () => chercher({ versLeBas: true }));
barre.querySelector('.fermer').addEventListener('click', fermer);
barre.addEventListener('keydown', ({ key, shiftKey, target, isComposing }) => {
  if (isComposing) return;
  if (key === 'Enter' && target === champ) chercher({ versLeBas: shiftKey });
  if (key === 'Escape') fermer();
});
addEventListener('choix', () => !barre.hidden && vue !== choisie() && suivre(choisie()));
