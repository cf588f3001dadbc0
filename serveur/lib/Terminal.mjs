import { spawn } from '@lydell/node-pty';
import { readFileSync, readlinkSync, statSync } from 'node:fs';
import { basename } from 'node:path';
import { Annonces } from './Annonces.mjs';
import { lireLesDernieresLignes, rejouerLesLignes } from './dernieresLignes.mjs';
import { argumentsDeLInterpreteur, environnement, interpreteur } from './interpreteur.mjs';
import { maison } from './reglages.mjs';
import { Tampon } from './Tampon.mjs';

// Bien plus que les lignes gardées : des lignes longues, ou très colorées, y tiennent encore.
const SORTIE_RELUE = 40_000;

// Un interpréteur de commandes dans son pseudo-terminal, et de quoi le montrer de nouveau à une page qui se recharge.
export class Terminal {
  id;
  nom;
  groupe;
  quandSortie = () => {};
  quandFin = () => {};
  #pty;
  #interpreteur = interpreteur();
  #dossier;
  #dossierLu = null;
  #annonces = new Annonces();
  #tampon = new Tampon();
  #dernieresLignes = [];
  #lignesPerimees = true;
  #aParle = false;
  #fini = false;
  #suspendu = false;

  // Lève une exception quand le système ne donne plus de pseudo-terminal.
  constructor({ id, nom, groupe, dossier, colonnes, lignes, lignesPassees }) {
    this.id = id;
    this.nom = nom;
    this.groupe = groupe;
    this.#dossier = estUnDossier(dossier) ? dossier : maison();
    this.#tampon.ajouter(rejouerLesLignes(lignesPassees));
    this.#pty = spawn(this.#interpreteur, argumentsDeLInterpreteur(), {
      name: 'xterm-256color',
      cols: borner(colonnes, 2, 80),
      rows: borner(lignes, 1, 24),
      cwd: this.#dossier,
      env: environnement(),
    });
    this.#annonces.quandDossier = (chemin) => this.#noterLeDossier(chemin);
    this.#pty.onData((texte) => this.#quandTexte(texte));
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

  get titre() {
    return this.#annonces.titre;
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
    const lues = await lireLesDernieresLignes(this.#tampon.rejouer(SORTIE_RELUE), this);
    return (this.#dernieresLignes = lues ?? this.#dernieresLignes);
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

  #quandTexte(texte) {
    this.#aParle = true;
    this.#lignesPerimees = true;
    this.#tampon.ajouter(texte);
    this.#annonces.lire(texte);
    this.quandSortie(texte);
  }

  #noterLeDossier(chemin) {
    if (!estUnDossier(chemin)) return;
    this.#dossierLu = this.#lireLeDossier();
    this.#dossier = chemin;
  }

  // Avant sa première parole, l’interpréteur n’est peut-être pas encore dans son dossier.
  #lireLeDossier() {
    if (this.#fini || !this.#aParle) return this.#dossierLu;
    return lireProc(() => readlinkSync(`/proc/${this.#pty.pid}/cwd`), this.#dossierLu);
  }

  #tientLePremierPlan() {
    // Après le nom, qui peut contenir n’importe quoi : état, père, groupe, session, terminal, groupe au premier plan.
    const etat = lireProc(() => readFileSync(`/proc/${this.#pty.pid}/stat`, 'utf8'), '');
    const champs = etat.slice(etat.lastIndexOf(')') + 2).split(' ');
    return champs.length < 6 || champs[2] === champs[5];
  }
}

// Hors de Linux, ou quand l’interpréteur vient de finir, le système ne dit rien.
function lireProc(lire, defaut) {
  try {
    return lire();
  } catch {
    return defaut;
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
