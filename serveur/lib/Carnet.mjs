import { renameSync } from 'node:fs';
import { basename } from 'node:path';
import { essayer } from '../page/essayer.js';
import { ecrireAtomiquement, lirePrive } from './reglages.mjs';

const DELAI_D_ECRITURE = 500;
const estEcrit = (texte) => typeof texte === 'string' && texte !== '';
const estUneEntree = (entree) => [entree?.id, entree?.nom, entree?.dossier].every(estEcrit);

// La liste des terminaux, gardée d’un lancement à l’autre : noms, ordre, dossiers, voisinages et dernières lignes.
// Les call-backs donnés : decrire(), quandEcrit(), signaler(phrase).
export class Carnet {
  #chemin;
  #version;
  #quand;
  #minuteur = null;
  #ecriture = Promise.resolve();
  #dernierTexte = null;
  #enPanne = false;
  #clos = false;

  constructor(chemin, version, quand) {
    this.#chemin = chemin;
    this.#version = version;
    this.#quand = quand;
  }

  // Les terminaux gardés, et la version du serveur qui les a écrits quand elle est connue. Une liste abîmée peut encore
  // servir à son propriétaire : elle est écartée, jamais écrasée.
  lire() {
    const texte = essayer(() => lirePrive(this.#chemin), '');
    const garde = texte === null ? { terminaux: [] } : essayer(() => JSON.parse(texte));
    if (Array.isArray(garde?.terminaux) && garde.terminaux.every(estUneEntree)) return garde;
    const ecarte = `${this.#chemin}.abime-${new Date().toISOString().replace(/[:.]/g, '-')}`;
    try {
      renameSync(this.#chemin, ecarte);
      this.#quand.signaler(`La liste des terminaux était abîmée : elle est mise de côté dans « ${basename(ecarte)} ».`);
    } catch (erreur) {
      this.#clos = true;
      this.#quand.signaler(`La liste des terminaux est abîmée et ne peut pas être mise de côté : ${erreur.message}`);
    }
    return { terminaux: [] };
  }

  // Des changements rapprochés ne font qu’une écriture.
  noter() {
    if (!this.#clos) this.#minuteur ??= setTimeout(() => this.#ecrire(), DELAI_D_ECRITURE);
  }

  // À l’arrêt, les terminaux finissent les uns après les autres : la liste ne doit plus les suivre.
  async clore() {
    if (!this.#clos) this.#ecrire();
    this.#clos = true;
    await this.#ecriture;
  }

  // L’une après l’autre : une description plus ancienne ne doit pas remplacer une plus neuve.
  #ecrire() {
    clearTimeout(this.#minuteur);
    this.#minuteur = null;
    this.#ecriture = this.#ecriture.then(() => this.#ecrireUneFois());
  }

  async #ecrireUneFois() {
    const contenu = { version: 1, serveur: this.#version, terminaux: await this.#quand.decrire() };
    const texte = `${JSON.stringify(contenu, null, 1)}\n`;
    if (texte === this.#dernierTexte) return;
    try {
      await ecrireAtomiquement(this.#chemin, texte);
      this.#dernierTexte = texte;
      this.#enPanne = false;
    } catch (erreur) {
      if (!this.#enPanne) this.#quand.signaler(`La liste des terminaux n’a pas pu être écrite : ${erreur.message}`);
      this.#enPanne = true;
    }
    this.#quand.quandEcrit();
  }
}
