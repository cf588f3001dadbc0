import { readFileSync, renameSync } from 'node:fs';
import { basename } from 'node:path';
import { ecrireAtomiquement } from './fichiers.mjs';

const DELAI_D_ECRITURE = 500;

// La liste des terminaux, gardée d’un lancement à l’autre : noms, ordre et dossiers, jamais ce qui s’y est affiché.
export class Carnet {
  #chemin;
  #decrire;
  #signaler;
  #minuteur = null;
  #dernierTexte = null;
  #clos = false;

  constructor(chemin, decrire, signaler) {
    this.#chemin = chemin;
    this.#decrire = decrire;
    this.#signaler = signaler;
  }

  lire() {
    let texte;
    try {
      texte = readFileSync(this.#chemin, 'utf8');
    } catch (erreur) {
      if (erreur.code === 'ENOENT') return [];
      return this.#mettreDeCote();
    }
    return comprendre(texte) ?? this.#mettreDeCote();
  }

  // Des changements rapprochés ne font qu’une écriture.
  noter() {
    if (!this.#clos) this.#minuteur ??= setTimeout(() => this.#ecrire(), DELAI_D_ECRITURE);
  }

  // À l’arrêt, les terminaux finissent les uns après les autres : la liste ne doit plus les suivre.
  clore() {
    this.#ecrire();
    this.#clos = true;
  }

  #ecrire() {
    clearTimeout(this.#minuteur);
    this.#minuteur = null;
    const texte = `${JSON.stringify({ version: 1, terminaux: this.#decrire() }, null, 2)}\n`;
    if (texte === this.#dernierTexte) return;
    try {
      ecrireAtomiquement(this.#chemin, texte);
      this.#dernierTexte = texte;
    } catch (erreur) {
      this.#signaler(`La liste des terminaux n’a pas pu être écrite : ${erreur.message}`);
    }
  }

  // Une liste abîmée peut encore servir à son propriétaire : elle est écartée, pas écrasée.
  #mettreDeCote() {
    const ecarte = `${this.#chemin}.abime-${new Date().toISOString().replace(/[:.]/g, '-')}`;
    try {
      renameSync(this.#chemin, ecarte);
      this.#signaler(`La liste des terminaux était abîmée : elle est mise de côté dans « ${basename(ecarte)} ».`);
    } catch (erreur) {
      this.#signaler(`La liste des terminaux est abîmée et ne peut pas être mise de côté : ${erreur.message}`);
    }
    return [];
  }
}

function comprendre(texte) {
  try {
    const { terminaux } = JSON.parse(texte);
    return Array.isArray(terminaux) && terminaux.every(estUneEntree) ? terminaux : null;
  } catch {
    return null;
  }
}

function estUneEntree(entree) {
  return ['id', 'nom', 'dossier'].every((cle) => typeof entree?.[cle] === 'string' && entree[cle] !== '');
}
