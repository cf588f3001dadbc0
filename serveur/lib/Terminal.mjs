import { spawn } from '@lydell/node-pty';
import { accessSync, constants, readFileSync, readlinkSync, statSync } from 'node:fs';
import { basename } from 'node:path';
import { essayer } from '../page/essayer.js';
import { Annonces } from './Annonces.mjs';
import { lireLesDernieresLignes, rejouerLesLignes } from './dernieresLignes.mjs';
import { maison } from './reglages.mjs';
import { Tampon } from './Tampon.mjs';

// Bien plus que les lignes gardées : des lignes longues, ou très colorées, y tiennent encore.
const SORTIE_RELUE = 40_000;
// Un bavard parle par morceaux de 4 Kio, qui feraient autant de messages : le premier part tout de suite, puis ce qui
// s’amasse pendant un répit, en millisecondes, part d’un trait.
const REPIT = 5;
// Ces variables décrivent un autre terminal, celui d’où le serveur a peut-être été lancé, ou le serveur lui-même.
const OTEES = /^(COLUMNS|LINES|STY|TERMCAP|TERM_PROGRAM(_VERSION)?|TMUX(_PANE)?|VTE_VERSION|WINDOW(ID)?|KELTROVE_.*)$/;

const estUnDossier = (chemin) => essayer(() => statSync(chemin).isDirectory(), false);
const estExecutable = (chemin) => essayer(() => accessSync(chemin, constants.X_OK) ?? true, false);
const borner = (valeur, minimum, defaut) => (
  Number.isInteger(valeur) && valeur >= minimum && valeur <= 1000 ? valeur : defaut
);

// Un interpréteur de commandes dans son pseudo-terminal, et de quoi le montrer de nouveau à une page qui se recharge.
export class Terminal {
  quandSortie = () => {};
  quandFin = () => {};
  annonces = new Annonces((chemin) => this.#noterLeDossier(chemin));
  tampon = new Tampon();
  #interpreteur = [process.env.SHELL, '/bin/bash'].find(estExecutable) ?? '/bin/sh';
  #pty;
  #dossier;
  #dossierLu = null;
  #dernieresLignes = [];
  #lignesPerimees = true;
  #aDire = '';
  #repit = null;
  #aParle = false;
  #fini = false;

  // Lève une exception quand le système ne donne plus de pseudo-terminal.
  constructor({ id, nom, groupe, dossier, colonnes, lignes, lignesPassees }) {
    Object.assign(this, { id, nom, groupe, colonnes: borner(colonnes, 2, 80), lignes: borner(lignes, 1, 24) });
    this.#dossier = estUnDossier(dossier) ? dossier : maison();
    this.tampon.ajouter(rejouerLesLignes(lignesPassees));
    const gardees = Object.entries(process.env).filter(([variable]) => !OTEES.test(variable));
    // Chaque système a son usage : sous macOS un terminal ouvre une session, ailleurs la session a déjà tout préparé.
    this.#pty = spawn(this.#interpreteur, process.platform === 'darwin' ? ['-l'] : [], {
      name: 'xterm-256color',
      cols: this.colonnes,
      rows: this.lignes,
      cwd: this.#dossier,
      env: { ...Object.fromEntries(gardees), TERM: 'xterm-256color', COLORTERM: 'truecolor' },
    });
    this.#pty.onData((morceau) => {
      this.#aDire += morceau;
      this.#repit ??= this.#dire();
    });
    this.#pty.onExit(() => {
      this.#fini = true;
      this.quandFin();
    });
  }

  // Le dernier dossier connu : celui qu’un programme annonce, ou celui où l’interpréteur vient d’aller.
  get dossier() {
    const lu = this.#lireLeDossier();
    if (lu !== this.#dossierLu && estUnDossier(lu)) this.#dossier = lu;
    this.#dossierLu = lu;
    return this.#dossier;
  }

  // Le programme au premier plan, quand ce n’est pas l’interpréteur qui attend une ligne.
  get programme() {
    if (this.#fini) return null;
    const nom = basename(this.#pty.process).replace(/^-/, '');
    return nom === basename(this.#interpreteur) && this.#tientLePremierPlan() ? null : nom;
  }

  async dernieresLignes() {
    if (!this.#lignesPerimees) return this.#dernieresLignes;
    this.#lignesPerimees = false;
    const lues = await lireLesDernieresLignes(this.tampon.rejouer(SORTIE_RELUE), this);
    return (this.#dernieresLignes = lues ?? this.#dernieresLignes);
  }

  saisir(texte) {
    if (!this.#fini) this.#pty.write(texte);
  }

  dimensionner(colonnes, lignes) {
    if (this.#fini) return;
    this.colonnes = borner(colonnes, 2, this.colonnes);
    this.lignes = borner(lignes, 1, this.lignes);
    // Si le pseudo-terminal se ferme et que sa fin n’est pas encore annoncée, sa taille n’importe plus.
    essayer(() => this.#pty.resize(this.colonnes, this.lignes));
  }

  suspendre(oui) {
    if (oui) this.#pty.pause();
    else this.#pty.resume();
  }

  // Comme une fenêtre de terminal qu’on ferme : un programme qui veut survivre au raccrochage le peut.
  raccrocher() {
    if (this.#fini) return;
    this.#pty.kill('SIGHUP');
    this.#pty.destroy();
  }

  #dire() {
    const texte = this.#aDire;
    this.#aDire = '';
    this.#aParle = true;
    this.#lignesPerimees = true;
    this.tampon.ajouter(texte);
    this.annonces.lire(texte);
    this.quandSortie(texte);
    return setTimeout(() => (this.#repit = this.#aDire === '' ? null : this.#dire()), REPIT);
  }

  #noterLeDossier(chemin) {
    if (!estUnDossier(chemin)) return;
    this.#dossierLu = this.#lireLeDossier();
    this.#dossier = chemin;
  }

  // Avant sa première parole, l’interpréteur n’est peut-être pas encore dans son dossier. Hors de Linux, ou quand il
  // vient de finir, le système ne dit rien.
  #lireLeDossier() {
    if (this.#fini || !this.#aParle) return this.#dossierLu;
    return essayer(() => readlinkSync(`/proc/${this.#pty.pid}/cwd`), this.#dossierLu);
  }

  #tientLePremierPlan() {
    // Après le nom, qui peut contenir n’importe quoi : état, père, groupe, session, terminal, groupe au premier plan.
    const etat = essayer(() => readFileSync(`/proc/${this.#pty.pid}/stat`, 'utf8'), '');
    const champs = etat.slice(etat.lastIndexOf(')') + 2).split(' ');
    return champs.length < 6 || champs[2] === champs[5];
  }
}
