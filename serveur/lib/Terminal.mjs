import { spawn } from '@lydell/node-pty';
import { accessSync, constants, readlinkSync, statSync } from 'node:fs';
import { maison } from './reglages.mjs';
import { Tampon } from './Tampon.mjs';

// Ces variables décrivent un autre terminal, celui d’où le serveur a peut-être été lancé.
const VARIABLES_OTEES = [
  'COLUMNS', 'LINES', 'STY', 'TERMCAP', 'TERM_PROGRAM', 'TERM_PROGRAM_VERSION',
  'TMUX', 'TMUX_PANE', 'VTE_VERSION', 'WINDOW', 'WINDOWID',
];

// Un interpréteur de commandes dans son pseudo-terminal, et de quoi le montrer de nouveau à une page qui se recharge.
export class Terminal {
  id;
  nom;
  quandSortie = () => {};
  quandFin = () => {};
  #pty;
  #dossier;
  #tampon = new Tampon();
  #fini = false;
  #suspendu = false;

  // Lève une exception quand le système ne donne plus de pseudo-terminal.
  constructor({ id, nom, dossier, colonnes, lignes }) {
    this.id = id;
    this.nom = nom;
    this.#dossier = estUnDossier(dossier) ? dossier : maison();
    this.#pty = spawn(interpreteur(), argumentsDeLInterpreteur(), {
      name: 'xterm-256color',
      cols: borner(colonnes, 2, 80),
      rows: borner(lignes, 1, 24),
      cwd: this.#dossier,
      env: environnement(),
    });
    this.#pty.onData((texte) => {
      this.#tampon.ajouter(texte);
      this.quandSortie(texte);
    });
    this.#pty.onExit(() => {
      this.#fini = true;
      this.quandFin();
    });
  }

  get colonnes() {
    return this.#pty.cols;
  }

  get lignes() {
    return this.#pty.rows;
  }

  // Le dossier où se trouve l’interpréteur, ou le dernier connu là où le système ne le dit pas.
  get dossier() {
    if (process.platform === 'linux' && !this.#fini) {
      try {
        const lu = readlinkSync(`/proc/${this.#pty.pid}/cwd`);
        if (estUnDossier(lu)) this.#dossier = lu;
      } catch {
        // L’interpréteur vient de finir : le dernier dossier connu convient.
      }
    }
    return this.#dossier;
  }

  rejouer() {
    return this.#tampon.rejouer();
  }

  saisir(texte) {
    if (!this.#fini) this.#pty.write(texte);
  }

  dimensionner(colonnes, lignes) {
    if (this.#fini) return;
    try {
      this.#pty.resize(borner(colonnes, 2, this.colonnes), borner(lignes, 1, this.lignes));
    } catch {
      // Le pseudo-terminal se ferme et sa fin n’est pas encore annoncée : sa taille n’importe plus.
    }
  }

  suspendre(oui) {
    if (this.#fini || oui === this.#suspendu) return;
    this.#suspendu = oui;
    if (oui) this.#pty.pause();
    else this.#pty.resume();
  }

  // Comme une fenêtre de terminal qu’on ferme : un programme qui veut survivre au raccrochage le peut.
  raccrocher() {
    if (this.#fini) return;
    this.#pty.kill('SIGHUP');
    this.#pty.destroy();
  }
}

function borner(valeur, minimum, defaut) {
  return Number.isInteger(valeur) && valeur >= minimum && valeur <= 1000 ? valeur : defaut;
}

function estUnDossier(chemin) {
  try {
    return statSync(chemin).isDirectory();
  } catch {
    return false;
  }
}

function interpreteur() {
  return [process.env.SHELL, '/bin/bash'].find(estExecutable) ?? '/bin/sh';
}

function estExecutable(chemin) {
  try {
    accessSync(chemin, constants.X_OK);
    return true;
  } catch {
    return false;
  }
}

// Chaque système a son usage : sous macOS un terminal ouvre une session, ailleurs la session a déjà tout préparé.
function argumentsDeLInterpreteur() {
  return process.platform === 'darwin' ? ['-l'] : [];
}

function environnement() {
  const gardees = Object.entries(process.env).filter(
    ([nom]) => !VARIABLES_OTEES.includes(nom) && !nom.startsWith('KELTROVE_'),
  );
  return { ...Object.fromEntries(gardees), TERM: 'xterm-256color', COLORTERM: 'truecolor' };
}
