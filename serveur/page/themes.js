const SOMBRE = {
  background: '#0e1116',
  foreground: '#d8dee6',
  cursor: '#d8dee6',
  cursorAccent: '#0e1116',
  selectionBackground: '#2d4a76',
  scrollbarSliderBackground: '#ffffff1f',
  scrollbarSliderHoverBackground: '#ffffff33',
  scrollbarSliderActiveBackground: '#ffffff47',
  black: '#47505e',
  red: '#f2777a',
  green: '#7fc98b',
  yellow: '#e0b867',
  blue: '#78aef5',
  magenta: '#c79bf0',
  cyan: '#63c6cf',
  white: '#c3cad4',
  brightBlack: '#77818f',
  brightRed: '#ff9a9c',
  brightGreen: '#a0e0aa',
  brightYellow: '#f2d08c',
  brightBlue: '#a3c9fb',
  brightMagenta: '#dcbdf8',
  brightCyan: '#93dde3',
  brightWhite: '#f3f5f8',
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
  black: '#1d2129',
  red: '#b3261e',
  green: '#1d6b34',
  yellow: '#7d5500',
  blue: '#1c55b3',
  magenta: '#7a36ad',
  cyan: '#0b6470',
  white: '#5f6672',
  brightBlack: '#6a717d',
  brightRed: '#c5352c',
  brightGreen: '#23803f',
  brightYellow: '#8f6300',
  brightBlue: '#2767d0',
  brightMagenta: '#8f47c6',
  brightCyan: '#0e7784',
  brightWhite: '#3a404a',
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
