import { readFileSync, renameSync } from 'node:fs';
import { basename } from 'node:path';
import { ecrireAtomiquement, rendrePrive } from './fichiers.mjs';

const DELAI_D_ECRITURE = 500;

// La liste des terminaux, gardée d’un lancement à l’autre : noms, ordre, dossiers, voisinages et dernières lignes.
export class Carnet {
  quandEcrit = () => {};
  #chemin;
  #version;
  #decrire;
  #signaler;
  #minuteur = null;
  #ecriture = Promise.resolve();
  #dernierTexte = null;
  #enPanne = false;
  #clos = false;

  constructor({ chemin, version, decrire, signaler }) {
    this.#chemin = chemin;
    this.#version = version;
    this.#decrire = decrire;
    this.#signaler = signaler;
  }

  // Les terminaux gardés, et la version du serveur qui les a écrits quand elle est connue.
  lire() {
    let texte;
    try {
      texte = readFileSync(this.#chemin, 'utf8');
      rendrePrive(this.#chemin);
    } catch (erreur) {
      return erreur.code === 'ENOENT' ? { terminaux: [] } : this.#mettreDeCote();
    }
    return comprendre(texte) ?? this.#mettreDeCote();
  }

  // Des changements rapprochés ne font qu’une écriture.
  noter() {
    if (!this.#clos) this.#minuteur ??= setTimeout(() => this.#ecrire(), DELAI_D_ECRITURE);
  }

  // À l’arrêt, les terminaux finissent les uns après les autres : la liste ne doit plus les suivre.
  async clore() {
    const derniere = this.#clos ? this.#ecriture : this.#ecrire();
    this.#clos = true;
    await derniere;
  }

  // L’une après l’autre : une description plus ancienne ne doit pas remplacer une plus neuve.
  #ecrire() {
    clearTimeout(this.#minuteur);
    this.#minuteur = null;
    return (this.#ecriture = this.#ecriture.then(() => this.#ecrireUneFois()));
  }

  async #ecrireUneFois() {
    const contenu = { version: 1, serveur: this.#version, terminaux: await this.#decrire() };
    const texte = `${JSON.stringify(contenu, null, 1)}\n`;
    if (texte === this.#dernierTexte) return;
    try {
      await ecrireAtomiquement(this.#chemin, texte);
      this.#dernierTexte = texte;
      this.#enPanne = false;
    } catch (erreur) {
      if (!this.#enPanne) this.#signaler(`La liste des terminaux n’a pas pu être écrite : ${erreur.message}`);
      this.#enPanne = true;
    }
    this.quandEcrit();
  }

  // Une liste abîmée peut encore servir à son propriétaire : elle est écartée, jamais écrasée.
  #mettreDeCote() {
    const ecarte = `${this.#chemin}.abime-${new Date().toISOString().replace(/[:.]/g, '-')}`;
    try {
      renameSync(this.#chemin, ecarte);
      this.#signaler(`La liste des terminaux était abîmée : elle est mise de côté dans « ${basename(ecarte)} ».`);
    } catch (erreur) {
      this.#clos = true;
      this.#signaler(`La liste des terminaux est abîmée et ne peut pas être mise de côté : ${erreur.message}`);
    }
    return { terminaux: [] };
  }
}

function comprendre(texte) {
  try {
    const { serveur, terminaux } = JSON.parse(texte);
    return Array.isArray(terminaux) && terminaux.every(estUneEntree) ? { serveur, terminaux } : null;
  } catch {
    return null;
  }
}

function estUneEntree(entree) {
  return ['id', 'nom', 'dossier'].every((cle) => typeof entree?.[cle] === 'string' && entree[cle] !== '');
}
