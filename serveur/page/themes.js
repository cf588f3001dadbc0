// Les seize couleurs, dans l’ordre où les programmes les numérotent, et où la feuille de style les donne.
const SOMBRES = ['black', 'red', 'green', 'yellow', 'blue', 'magenta', 'cyan', 'white'];
const VIVES = SOMBRES.map((nom) => `bright${nom[0].toUpperCase()}${nom.slice(1)}`);

// Lisibles sous du texte clair comme sous du texte sombre.
export const TROUVAILLES = {
  matchBackground: '#8a6d1f',
  activeMatchBackground: '#c8871a',
  matchOverviewRuler: '#8a6d1f',
  activeMatchColorOverviewRuler: '#c8871a',
};

const preferenceClaire = matchMedia('(prefers-color-scheme: light)');
preferenceClaire.addEventListener('change', () => dispatchEvent(new Event('reglages')));

// Les couleurs de la page sont aussi celles du terminal : la feuille de style est seule à les dire.
export function apparenceDuTerminal() {
  const style = getComputedStyle(document.documentElement);
  const [fond, texte, selection, couleurs] = ['--fond-terminal', '--texte', '--selection', '--couleurs'].map((nom) => (
    style.getPropertyValue(nom).trim()
  ));
  const seize = couleurs.split(/\s+/).map((couleur, rang) => [[...SOMBRES, ...VIVES][rang], couleur]);
  return {
    theme: {
      ...Object.fromEntries(seize),
      background: fond,
      foreground: texte,
      cursor: texte,
      cursorAccent: fond,
      selectionBackground: selection,
    },
    // Bien des programmes choisissent leurs couleurs pour un fond noir : sur fond clair, elles sont foncées au besoin.
    minimumContrastRatio: preferenceClaire.matches ? 4.5 : 1,
  };
}
