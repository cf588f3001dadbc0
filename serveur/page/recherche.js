import { choisie, rendreLeFocus } from '/terminaux.js';

// La barre où l’on cherche dans le terminal choisi.
const barre = document.querySelector('.recherche');
const champ = barre.querySelector('input');
const compte = barre.querySelector('output');
let vue = null;
let comptage = null;

// Lisibles sous du texte clair comme sous du texte sombre.
const decorations = {
  matchBackground: '#8a6d1f',
  activeMatchBackground: '#c8871a',
};

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
  vue?.recherche.clearDecorations();
  comptage?.dispose();
  vue = neuve;
  comptage = vue?.recherche.onDidChangeResults(compter);
  if (vue) chercher({ neuf: true });
}

// De bas en haut d’abord : ce que l’on cherche vient le plus souvent de passer.
function chercher({ neuf = false, versLeBas = false } = {}) {
  const texte = champ.value;
  if (texte === '') return vue.recherche.clearDecorations();
  if (neuf) vue.terminal.clearSelection();
  if (versLeBas) vue.recherche.findNext(texte, { decorations });
  else vue.recherche.findPrevious(texte, { decorations });
}

function compter({ resultIndex, resultCount }) {
  const trouves = resultIndex < 0 ? `${resultCount} résultats` : `${resultIndex + 1} sur ${resultCount}`;
  compte.value = resultCount === 0 ? 'Aucun résultat' : trouves;
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
