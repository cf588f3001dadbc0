import { valeurs } from '/reglages.js';

const PILE = '"DejaVu Sans Mono", "Liberation Mono", Menlo, monospace';
// Aucun site n’a le droit de demander la liste des polices ; de l’une, on peut voir si elle change la mesure d’un texte.
const TEMOINS = ['serif', 'sans-serif', 'monospace'];
const LETTRES = ['i', 'l', 'M', 'W', '0', '.'];
const CONNUES = [
  'Adwaita Mono', 'Anonymous Pro', 'Cascadia Code', 'Cascadia Mono', 'Courier Prime', 'DejaVu Sans Mono', 'Fantasque Sans Mono',
  'Fira Code', 'Fira Mono', 'FreeMono', 'Hack', 'IBM Plex Mono', 'Inconsolata', 'Iosevka', 'JetBrains Mono', 'Liberation Mono',
  'Monoid', 'Noto Sans Mono', 'Roboto Mono', 'Source Code Pro', 'Terminus', 'Ubuntu Mono', 'Victor Mono',
];
const PHRASES = {
  absente: 'Cette police n’est pas installée : le terminal garde la sienne.',
  inegale: 'Les lettres de cette police n’ont pas toutes la même largeur : le terminal garde la sienne.',
};

const champ = document.querySelector('[name=police]');
const note = document.querySelector('.note.police');
const pinceau = document.createElement('canvas').getContext('2d');

export function familleDuTerminal() {
  return valeurs.police !== '' && defaut(valeurs.police) === null ? `${nommer(valeurs.police)}, ${PILE}` : PILE;
}

// Ce qui empêche un terminal de s’en servir ; rien si elle convient.
function defaut(police) {
  const famille = nommer(police);
  const installee = TEMOINS.some((temoin) => mesurer(`${famille}, ${temoin}`, 'Wij0.') !== mesurer(temoin, 'Wij0.'));
  if (!installee) return 'absente';
  const [largeur, ...autres] = LETTRES.map((lettre) => mesurer(famille, lettre));
  return autres.every((autre) => Math.abs(autre - largeur) < 0.5) ? null : 'inegale';
}

const nommer = (police) => `"${police}"`;

function mesurer(famille, texte) {
  pinceau.font = `100px ${famille}`;
  return pinceau.measureText(texte).width;
}

function dire() {
  note.textContent = valeurs.police === '' ? '' : PHRASES[defaut(valeurs.police)] ?? '';
}

dire();
addEventListener('reglages', dire);
// À la première visite du champ : les mesurer toutes prend un instant.
champ.addEventListener('focus', () => {
  const trouvees = CONNUES.filter((police) => defaut(police) === null);
  champ.list.replaceChildren(...trouvees.map((police) => new Option(police, police)));
}, { once: true });
