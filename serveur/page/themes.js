// Les seize couleurs, dans l’ordre où les programmes les numérotent.
const NOMS = ['black', 'red', 'green', 'yellow', 'blue', 'magenta', 'cyan', 'white'];
const nommer = (couleurs) => Object.fromEntries(couleurs.map((couleur, rang) => {
  const nom = NOMS[rang % 8];
  return [rang < 8 ? nom : `bright${nom[0].toUpperCase()}${nom.slice(1)}`, couleur];
}));

const SOMBRE = {
  background: '#0e1116',
  foreground: '#d8dee6',
  cursor: '#d8dee6',
  cursorAccent: '#0e1116',
  selectionBackground: '#2d4a76',
  scrollbarSliderBackground: '#ffffff1f',
  scrollbarSliderHoverBackground: '#ffffff33',
  scrollbarSliderActiveBackground: '#ffffff47',
  ...nommer([
    '#47505e', '#f2777a', '#7fc98b', '#e0b867', '#78aef5', '#c79bf0', '#63c6cf', '#c3cad4',
    '#77818f', '#ff9a9c', '#a0e0aa', '#f2d08c', '#a3c9fb', '#dcbdf8', '#93dde3', '#f3f5f8',
  ]),
};

const CLAIR = {
  background: '#fbfbfc',
  foreground: '#1d2129',
  cursor: '#1d2129',
  cursorAccent: '#fbfbfc',
  selectionBackground: '#bcd5f8',
  scrollbarSliderBackground: '#00000024',
  scrollbarSliderHoverBackground: '#0000003d',
  scrollbarSliderActiveBackground: '#00000057',
  ...nommer([
    '#1d2129', '#b3261e', '#1d6b34', '#7d5500', '#1c55b3', '#7a36ad', '#0b6470', '#5f6672',
    '#6a717d', '#c5352c', '#23803f', '#8f6300', '#2767d0', '#8f47c6', '#0e7784', '#3a404a',
  ]),
};

// Lisibles sous du texte clair comme sous du texte sombre.
export const TROUVAILLES = {
  matchBackground: '#8a6d1f',
  activeMatchBackground: '#c8871a',
  matchOverviewRuler: '#8a6d1f',
  activeMatchColorOverviewRuler: '#c8871a',
};

const preference = matchMedia('(prefers-color-scheme: light)');

// Bien des programmes choisissent leurs couleurs pour un fond noir : sur fond clair, le terminal les fonce au besoin.
export function apparenceDuTerminal() {
  return preference.matches
    ? { theme: CLAIR, minimumContrastRatio: 4.5 }
    : { theme: SOMBRE, minimumContrastRatio: 1 };
}

export function suivreLApparence(quandElleChange) {
  preference.addEventListener('change', quandElleChange);
}
