import { renameSync } from 'node:fs';
import { basename } from 'node:path';
import { essayer } from '../page/essayer.js';
import { ecrireAtomiquement, lirePrive } from './reglages.mjs';

const DELAI_D_ECRITURE = 500;
const estEcrit = (texte) => typeof texte === 'string' && texte !== '';
const estUneEntree = (entree) => [entree?.id, entree?.nom, entree?.dossier].every(estEcrit);

// La liste des terminaux, gardée d’un lancement à l’autre : noms, ordre, dossiers, voisinages et dernières lignes.
export function ouvrirLeCarnet({ chemin, version, decrire, quandEcrit, signaler }) {
  let minuteur = null;
  let ecriture = Promise.resolve();
  let dernierTexte = null;
  let enPanne = false;
  let clos = false;

  // Les terminaux gardés, et la version du serveur qui les a écrits quand elle est connue. Une liste abîmée peut encore
  // servir à son propriétaire : elle est écartée, jamais écrasée.
  function lire() {
    const texte = essayer(() => lirePrive(chemin), '');
    const garde = texte === null ? { terminaux: [] } : essayer(() => JSON.parse(texte));
    if (Array.isArray(garde?.terminaux) && garde.terminaux.every(estUneEntree)) return garde;
    const ecarte = `${chemin}.abime-${new Date().toISOString().replace(/[:.]/g, '-')}`;
    try {
      renameSync(chemin, ecarte);
      signaler(`La liste des terminaux était abîmée : elle est mise de côté dans « ${basename(ecarte)} ».`);
    } catch (erreur) {
      clos = true;
      signaler(`La liste des terminaux est abîmée et ne peut pas être mise de côté : ${erreur.message}`);
    }
    return { terminaux: [] };
  }

  // Des changements rapprochés ne font qu’une écriture.
  function noter() {
    if (!clos) minuteur ??= setTimeout(ecrire, DELAI_D_ECRITURE);
  }

  // À l’arrêt, les terminaux finissent les uns après les autres : la liste ne doit plus les suivre.
  async function clore() {
    if (!clos) ecrire();
    clos = true;
    await ecriture;
  }

  // L’une après l’autre : une description plus ancienne ne doit pas remplacer une plus neuve.
  function ecrire() {
    clearTimeout(minuteur);
    minuteur = null;
    ecriture = ecriture.then(ecrireUneFois);
  }

  async function ecrireUneFois() {
    const texte = `${JSON.stringify({ version: 1, serveur: version, terminaux: await decrire() }, null, 1)}\n`;
    if (texte === dernierTexte) return;
    try {
      await ecrireAtomiquement(chemin, texte);
      dernierTexte = texte;
      enPanne = false;
    } catch (erreur) {
      if (!enPanne) signaler(`La liste des terminaux n’a pas pu être écrite : ${erreur.message}`);
      enPanne = true;
    }
    quandEcrit();
  }

  return { lire, noter, clore };
}
