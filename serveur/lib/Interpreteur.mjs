import { spawn } from '@lydell/node-pty';
import { closeSync, openSync, readFileSync, readlinkSync, writeSync } from 'node:fs';
import { basename } from 'node:path';
import { fileURLToPath } from 'node:url';
import { essayer } from '../page/essayer.js';
import { avecSaLimite, environnementTransmis } from './heritage.mjs';
import { estExecutable, lireLesInterpreteurs } from './interpreteurs.mjs';
import { Saisie } from './Saisie.mjs';

// Les fichiers qu’un utilisateur peut faire lire à son interpréteur, pour qu’il dise où commencent ses commandes.
const INTEGRATION = fileURLToPath(new URL('../integration', import.meta.url));

// Un terminal qui prendrait les derniers descripteurs empêcherait d’ouvrir la page qui doit le montrer.
const RESERVE = 8;

function verifierLaReserve() {
  const pris = [];
  try {
    for (let i = 0; i < RESERVE; i += 1) pris.push(openSync('/dev/null'));
  } finally {
    pris.forEach((fichier) => closeSync(fichier));
  }
}

// Un interpréteur de commandes dans son pseudo-terminal.
export class Interpreteur {
  #programme = [lireLesInterpreteurs().choisi, process.env.SHELL, '/bin/bash'].find(estExecutable) ?? '/bin/sh';
  #pty;
  #saisie = new Saisie((octets) => writeSync(this.#pty.fd, octets));
  // Fermé, son descripteur peut aussitôt servir à un autre terminal : plus rien ne doit s’y écrire ni s’y demander.
  #ferme = false;
  #fini = false;

  // Lève une exception quand le système ne donne plus de pseudo-terminal, ou de processus.
  constructor({ dossier, colonnes, lignes, quandTexte, quandFin }) {
    verifierLaReserve();
    // Chaque système a son usage : sous macOS un terminal ouvre une session, ailleurs la session a déjà tout préparé.
    const [programme, ...arguments_] = avecSaLimite([this.#programme, ...(process.platform === 'darwin' ? ['-l'] : [])]);
    this.#pty = spawn(programme, arguments_, {
      name: 'xterm-256color',
      cols: colonnes,
      rows: lignes,
      cwd: dossier,
      env: { ...environnementTransmis(), SHELL: this.#programme, TERM: 'xterm-256color', COLORTERM: 'truecolor', KELTROVE_INTEGRATION: INTEGRATION },
    });
    // Une lecture qui échoue annonce sa fin ; sans cette écoute, elle arrêterait le serveur entier.
    this.#pty.on('error', () => {});
    this.#pty.onData(quandTexte);
    this.#pty.on('close', () => this.#fermer());
    this.#pty.onExit(() => {
      this.#fini = true;
      this.#fermer();
      quandFin();
    });
  }

  // Le programme au premier plan, quand ce n’est pas l’interpréteur qui attend une ligne.
  get programme() {
    if (this.#ferme) return null;
    const nom = basename(this.#pty.process).replace(/^-/, '');
    return nom === basename(this.#programme) && this.#tientLePremierPlan() ? null : nom;
  }

  // Hors de Linux, ou quand il vient de finir, rien ne dit où il est.
  get dossier() {
    return essayer(() => readlinkSync(`/proc/${this.#pty.pid}/cwd`));
  }

  // Faux quand trop de saisie attend déjà : rien de ce texte n’est alors gardé.
  saisir(texte, quandEcrit) {
    return this.#ferme || this.#saisie.ajouter(texte, quandEcrit);
  }

  oublierLaSaisie() {
    this.#saisie.vider();
  }

  dimensionner(colonnes, lignes) {
    if (!this.#ferme) essayer(() => this.#pty.resize(colonnes, lignes));
  }

  suspendre(oui) {
    if (oui) this.#pty.pause();
    else this.#pty.resume();
  }

  // Comme une fenêtre de terminal qu’on ferme : un programme qui veut survivre au raccrochage le peut.
  raccrocher() {
    if (this.#fini) return;
    this.#fermer();
    this.#pty.kill('SIGHUP');
    this.#pty.destroy();
  }

  #fermer() {
    this.#ferme = true;
    this.#saisie.vider();
  }

  #tientLePremierPlan() {
    // Après le nom, qui peut contenir n’importe quoi : état, père, groupe, session, terminal, groupe au premier plan.
    const etat = essayer(() => readFileSync(`/proc/${this.#pty.pid}/stat`, 'utf8'), '');
    const champs = etat.slice(etat.lastIndexOf(')') + 2).split(' ');
    return champs.length < 6 || champs[2] === champs[5];
  }
}
