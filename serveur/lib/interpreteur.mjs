import { accessSync, constants } from 'node:fs';

// Ces variables décrivent un autre terminal, celui d’où le serveur a peut-être été lancé.
const VARIABLES_OTEES = [
  'COLUMNS', 'LINES', 'STY', 'TERMCAP', 'TERM_PROGRAM', 'TERM_PROGRAM_VERSION',
  'TMUX', 'TMUX_PANE', 'VTE_VERSION', 'WINDOW', 'WINDOWID',
];

export function interpreteur() {
  return [process.env.SHELL, '/bin/bash'].find(estExecutable) ?? '/bin/sh';
}

// Chaque système a son usage : sous macOS un terminal ouvre une session, ailleurs la session a déjà tout préparé.
export function argumentsDeLInterpreteur() {
  return process.platform === 'darwin' ? ['-l'] : [];
}

export function environnement() {
  const gardees = Object.entries(process.env).filter(
    ([nom]) => !VARIABLES_OTEES.includes(nom) && !nom.startsWith('KELTROVE_'),
  );
  return { ...Object.fromEntries(gardees), TERM: 'xterm-256color', COLORTERM: 'truecolor' };
}

function estExecutable(chemin) {
  try {
    accessSync(chemin, constants.X_OK);
    return true;
  } catch {
    return false;
  }
}
