import { valeurs } from '/reglages.js';

// Les couleurs, dans l’ordre où les programmes les numérotent, et où la feuille de style les donne.
const NOMS = [
  'black', 'red', 'green', 'yellow', 'blue', 'magenta', 'cyan', 'white', 'brightBlack', 'brightRed', 'brightGreen',
  'brightYellow', 'brightBlue', 'brightMagenta', 'brightCyan', 'brightWhite',
];

const racine = document.documentElement;
const preferenceClaire = matchMedia('(prefers-color-scheme: light)');

// La page d’abord : les terminaux lisent ensuite leurs couleurs dans la sienne.
function habiller() {
  const duBureau = preferenceClaire.matches ? 'clair' : 'sombre';
  racine.dataset.theme = valeurs.theme === 'systeme' ? duBureau : valeurs.theme;
}

habiller();
addEventListener('reglages', habiller);
preferenceClaire.addEventListener('change', () => dispatchEvent(new Event('reglages')));

// Les couleurs de la page sont aussi celles du terminal : la feuille de style est seule à les dire.
export function apparenceDuTerminal() {
  const style = getComputedStyle(racine);
  const lire = (nom) => style.getPropertyValue(nom).trim();
  const [background, foreground] = [lire('--fond-terminal'), lire('--texte')];
  const seize = lire('--couleurs').split(/\s+/).map((couleur, rang) => [NOMS[rang], couleur]);
  const curseur = { cursor: foreground, cursorAccent: background, selectionBackground: lire('--selection') };
  return {
    theme: { background, foreground, ...curseur, ...Object.fromEntries(seize) },
    // Un programme choisit ses couleurs sans savoir sur quel fond, ni ce que valent les nôtres.
    minimumContrastRatio: 4.5,
  };
}
