import { statSync } from 'node:fs';
import { open, rm } from 'node:fs/promises';
import { basename, isAbsolute, join } from 'node:path';
import { essayer } from '../page/essayer.js';
import { lireUnFichier, maison, remplacer } from './reglages.mjs';

// Un titre peut contenir de tout ; un nom de fichier, sur une clé USB, presque rien.
const IMPROPRES = /[/\\:*?"<>|\p{Cc}\p{Cf}]/gu;
const LONGUEUR_DU_NOM = 50;
const DECLARATION = /^\s*XDG_DOWNLOAD_DIR="((?:\\.|[^"\\])*)"/m;

const FAUTES = {
  EACCES: 'ce dossier refuse d’être écrit',
  EDQUOT: 'votre part de disque est pleine',
  ENOSPC: 'le disque est plein, faites-y de la place',
  EROFS: 'ce dossier est en lecture seule',
};

const estUnDossier = (chemin) => essayer(() => isAbsolute(chemin) && statSync(chemin).isDirectory(), false);

// Écrit ce texte dans un fichier neuf, lisible de son seul propriétaire ; rend la phrase qui dit où, ou pourquoi pas.
export async function enregistrerLHistorique(nom, texte) {
  const dossier = dossierDesTelechargements();
  const ou = dossier === maison() ? 'votre dossier personnel' : `le dossier « ${basename(dossier)} »`;
  try {
    const chemin = await reserver(dossier, `${nettoyer(nom)} – ${dater(new Date())}`);
    await remplacer(chemin, texte).catch(async (erreur) => {
      await rm(chemin, { force: true }).catch(() => {});
      throw erreur;
    });
    return `Historique enregistré dans ${ou}, sous le nom « ${basename(chemin)} ».`;
  } catch (erreur) {
    return `L’historique n’a pas pu être enregistré dans ${ou} : ${FAUTES[erreur.code] ?? erreur.message}.`;
  }
}

// Celui que le bureau a choisi ; sinon, la maison.
function dossierDesTelechargements() {
  const preferences = join(process.env.XDG_CONFIG_HOME || join(maison(), '.config'), 'user-dirs.dirs');
  const declare = DECLARATION.exec(essayer(() => lireUnFichier(preferences).texte, ''))?.[1].replace(/\\(.)/g, '$1');
  const dossier = declare?.replace(/^\$HOME(?=\/|$)/, maison()).replace(/(.)\/+$/, '$1');
  return estUnDossier(dossier) ? dossier : maison();
}

// Un fichier vide, qui n’existait pas : rien n’est écrasé, et nul autre n’en prendra le nom.
async function reserver(dossier, nom) {
  for (let rang = 1; ; rang += 1) {
    const chemin = join(dossier, `${nom}${rang === 1 ? '' : ` (${rang})`}.txt`);
    const fichier = await open(chemin, 'wx', 0o600).catch((erreur) => {
      if (erreur.code !== 'EEXIST') throw erreur;
    });
    await fichier?.close();
    if (fichier) return chemin;
  }
}

const nettoyer = (nom) => [...String(nom).replace(IMPROPRES, '-')].slice(0, LONGUEUR_DU_NOM).join('').replace(/^[\s.]+|\s+$/g, '') || 'Terminal';

function dater(jour) {
  const [mois, date, heure, minute] = [jour.getMonth() + 1, jour.getDate(), jour.getHours(), jour.getMinutes()].map((nombre) => String(nombre).padStart(2, '0'));
  return `${jour.getFullYear()}-${mois}-${date} ${heure}.${minute}`;
}
