import { spawn } from 'node:child_process';
import { open, realpath, stat } from 'node:fs/promises';
import { basename, resolve } from 'node:path';
import { avecSaLimite, environnementTransmis } from './heritage.mjs';
import { maison } from './reglages.mjs';

const COMMANDE_D_OFFICE = 'xdg-open {fichier}';
// Ceux-là choisissent d’eux-mêmes un programme, et peuvent exécuter ce qu’on leur donne à ouvrir.
const OUVREURS = /^(xdg-open|gio|gvfs-open|exo-open|kde-open\d?|kfmclient|open|mimeopen|run-mailcap|see)$/;
const EXECUTABLE = 0o111;
const DEBUT = 4096;
const CHEMINS_MAXIMUM = 32;
const RECHERCHES_MAXIMUM = 2;
const LONGUEUR_MAXIMALE = 4096;
// En millisecondes : un éditeur qui finit plus tard a servi.
const ECHEC_IMMEDIAT = 5000;
// Ce que répond l’interpréteur qui n’a pas pu lancer le programme.
const [INTERDIT, INTROUVABLE] = [126, 127];

let recherches = 0;

// Pour chaque chemin écrit dans un terminal, relatif à son dossier, le fichier qui existe vraiment ; sinon rien. L’un après
// l’autre et peu à la fois : un disque qui ne répond plus ne doit pas retenir tout ce que le serveur a à lire.
export async function trouverLesFichiers(chemins, dossier) {
  if (!Array.isArray(chemins) || recherches >= RECHERCHES_MAXIMUM) return [];
  recherches += 1;
  const trouves = [];
  for (const chemin of chemins.slice(0, CHEMINS_MAXIMUM)) trouves.push(await trouverUnFichier(chemin, dossier));
  recherches -= 1;
  return trouves;
}

async function trouverUnFichier(chemin, dossier) {
  if (typeof chemin !== 'string' || chemin.length > LONGUEUR_MAXIMALE) return null;
  const absolu = resolve(dossier ?? maison(), chemin.replace(/^~(?=\/)/, maison()));
  return stat(absolu).then((etat) => (etat.isFile() ? absolu : null), () => null);
}

// Ouvre ce fichier dans l’éditeur ; rend ce qui l’en empêche, en une phrase, ou rien.
export async function editer({ chemin, ligne, colonne, commande, dossier }) {
  const fichier = await trouverUnFichier(chemin, dossier);
  if (!fichier) return 'Ce fichier n’existe plus.';
  const choisis = typeof commande === 'string' ? decouper(commande) : [];
  const mots = choisis[0] ? choisis : decouper(COMMANDE_D_OFFICE);
  if (OUVREURS.test(basename(mots[0])) && (await pourraitSExecuter(fichier))) {
    return `« ${basename(fichier)} » pourrait s’exécuter en s’ouvrant. Choisissez un éditeur de texte dans les réglages.`;
  }
  const valeurs = { fichier, ligne: rangOuUn(ligne), colonne: rangOuUn(colonne) };
  const complets = mots.some((mot) => mot.includes('{fichier}')) ? mots : [...mots, '{fichier}'];
  return lancer(complets.map((mot) => mot.replace(/\{(fichier|ligne|colonne)\}/g, (_, nom) => valeurs[nom])), dossier);
}

const rangOuUn = (valeur) => String(Number.isInteger(valeur) && valeur > 0 ? valeur : 1);

// Des mots, que des guillemets peuvent grouper ; aucun interpréteur ne les relira.
export function decouper(commande) {
  return [...commande.matchAll(/(?:"[^"]*"|'[^']*'|[^\s"'])+/g)].map(([mot]) => mot.replace(/"([^"]*)"|'([^']*)'/g, '$1$2'));
}

// Un raccourci du bureau se reconnaît aussi à ce qu’il contient, et ce qui n’est pas du texte n’a pas de lignes.
async function pourraitSExecuter(fichier) {
  const vrai = await realpath(fichier);
  const ouvert = await open(vrai);
  try {
    const { mode } = await ouvert.stat();
    const { buffer, bytesRead } = await ouvert.read(Buffer.alloc(DEBUT), 0, DEBUT, 0);
    const debut = buffer.toString('latin1', 0, bytesRead);
    return (mode & EXECUTABLE) !== 0 || /\.desktop$/i.test(vrai) || /^\[(Desktop Entry|KDE Desktop Entry)\]/m.test(debut) || debut.includes('\0');
  } finally {
    await ouvert.close();
  }
}

function lancer(commande, dossier) {
  const [programme, ...arguments_] = avecSaLimite(commande);
  const env = Object.fromEntries(Object.entries(environnementTransmis()).filter(([nom]) => !/^(NODE_|npm_)/.test(nom)));
  return new Promise((rendre) => {
    const processus = spawn(programme, arguments_, { cwd: dossier, env, detached: true, stdio: 'ignore' });
    setTimeout(rendre, ECHEC_IMMEDIAT, null).unref();
    processus.once('error', () => rendre(direLEchec(commande[0], INTROUVABLE)));
    processus.once('exit', (code) => rendre(code ? direLEchec(commande[0], code) : null));
    processus.unref();
  });
}

function direLEchec(programme, code) {
  if (code === INTROUVABLE || code === INTERDIT) return `« ${programme} » ne se lance pas : vérifiez l’éditeur dans les réglages.`;
  return `« ${programme} » n’a pas pu ouvrir ce fichier (code ${code}). Choisissez un éditeur dans les réglages.`;
}
