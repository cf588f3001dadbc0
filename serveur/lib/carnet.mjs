import { renameSync } from 'node:fs';
import { basename } from 'node:path';
import { essayer } from '../page/essayer.js';
import { ecrireAtomiquement, lirePrive, suivreLesLiens } from './reglages.mjs';

// En millisecondes. Un nom ou un dossier s’écrit aussitôt, mais ce qui change d’un trait ne fait qu’une écriture.
const DELAI_D_UN_RANGEMENT = 200;
const DELAI_DES_LIGNES = 10_000;
// En octets par milliseconde, pour les lignes d’une très longue liste.
const DEBIT_DES_LIGNES = 40;
const PREMIERE_REPRISE = 1000;
const REPRISE_MAXIMALE = 60_000;

const estEcrit = (texte) => typeof texte === 'string' && texte !== '';
const estUneEntree = (entree) => [entree?.id, entree?.nom, entree?.dossier].every(estEcrit);

// La liste des terminaux, gardée d’un lancement à l’autre : noms, ordre, dossiers, voisinages et dernières lignes.
// `quandEcriture(erreur)` dit comment chaque écriture a fini ; celle qui échoue est reprise, de plus en plus tard.
export function ouvrirLeCarnet({ chemin, version, decrire, quandEcriture = () => {}, signaler }) {
  const minuteurs = new Map();
  let ecriture = Promise.resolve();
  let dernierTexte = null;
  let octetsEcrits = 0;
  let echecs = 0;
  let clos = false;

  // Les terminaux gardés, et la version du serveur qui les a écrits quand elle est connue. Une liste abîmée peut encore
  // servir à son propriétaire : elle est écartée, jamais écrasée.
  function lire() {
    const texte = essayer(() => lirePrive(chemin), '');
    const garde = texte === null ? { terminaux: [] } : essayer(() => JSON.parse(texte));
    if (Array.isArray(garde?.terminaux) && garde.terminaux.every(estUneEntree)) return garde;
    const cible = suivreLesLiens(chemin);
    const ecarte = `${cible}.abime-${new Date().toISOString().replace(/[:.]/g, '-')}`;
    try {
      renameSync(cible, ecarte);
      signaler(`La liste des terminaux était abîmée : elle est mise de côté dans « ${basename(ecarte)} ».`);
    } catch (erreur) {
      clos = true;
      signaler(`La liste des terminaux est abîmée et ne peut pas être mise de côté : ${erreur.message}`);
    }
    return { terminaux: [] };
  }

  const noterLeRangement = () => prevoir('rangement', DELAI_D_UN_RANGEMENT);
  const noterLesLignes = () => prevoir('lignes', Math.max(DELAI_DES_LIGNES, octetsEcrits / DEBIT_DES_LIGNES));

  function prevoir(quoi, delai) {
    if (clos || minuteurs.has(quoi)) return;
    minuteurs.set(quoi, setTimeout(() => {
      minuteurs.delete(quoi);
      ecrire({ relireLesLignes: quoi === 'lignes' });
    }, delai));
  }

  // À l’arrêt, les terminaux finissent les uns après les autres : la liste ne doit plus les suivre.
  async function clore() {
    minuteurs.forEach(clearTimeout);
    if (!clos) ecrire({ relireLesLignes: true });
    clos = true;
    await ecriture;
  }

  // L’une après l’autre : une description plus ancienne ne doit pas remplacer une plus neuve.
  function ecrire(options) {
    ecriture = ecriture.then(() => ecrireUneFois(options));
  }

  async function ecrireUneFois(options) {
    const texte = `${JSON.stringify({ version: 1, serveur: version, terminaux: await decrire(options) }, null, 1)}\n`;
    if (texte === dernierTexte) return;
    try {
      await ecrireAtomiquement(suivreLesLiens(chemin), texte);
      dernierTexte = texte;
      octetsEcrits = Buffer.byteLength(texte);
      echecs = 0;
      quandEcriture(null);
    } catch (erreur) {
      prevoir('reprise', Math.min(PREMIERE_REPRISE * 2 ** echecs, REPRISE_MAXIMALE));
      echecs += 1;
      quandEcriture(erreur);
    }
  }

  return { lire, noterLeRangement, noterLesLignes, clore };
}
