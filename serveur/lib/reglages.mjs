import { randomBytes } from 'node:crypto';
import { chmodSync, mkdirSync, readdirSync, readFileSync, renameSync, rmSync, writeFileSync } from 'node:fs';
import { open, rename, rm } from 'node:fs/promises';
import { userInfo } from 'node:os';
import { join } from 'node:path';
import { essayer } from '../page/essayer.js';

const PORT_PAR_DEFAUT = 7777;
const PROVISOIRE = /^keltrove-(carnet\.json|jeton)\.[0-9a-f]{8}\.tmp$/;

// L’application et le serveur doivent tomber sur le même dossier : un HOME vide ne compte pas.
export const maison = () => process.env.HOME || userInfo().homedir;
export const auDossierCache = (nom = '') => join(maison(), '.zelcor', nom);

const nommerUnProvisoire = (chemin) => `${chemin}.${randomBytes(4).toString('hex')}.tmp`;

// Prêt à servir, et débarrassé de ce qu’un serveur tué au milieu d’une écriture y a laissé.
export function preparerLeDossierCache() {
  mkdirSync(auDossierCache(), { recursive: true, mode: 0o700 });
  const provisoires = readdirSync(auDossierCache()).filter((nom) => PROVISOIRE.test(nom));
  for (const nom of provisoires) rmSync(auDossierCache(nom), { force: true });
}

// Mêmes règles que l’application, qui attend le serveur sur le port qu’elle lit elle-même dans ce fichier.
export function portSouhaite() {
  const port = essayer(() => JSON.parse(readFileSync(auDossierCache('keltrove.json'), 'utf8')).port);
  return Number.isInteger(port) && port >= 1 && port <= 65535 ? port : PORT_PAR_DEFAUT;
}

export function lireOuCreerJeton() {
  const chemin = auDossierCache('keltrove-jeton');
  const connu = lirePrive(chemin)?.trim();
  if (connu) return connu;
  const neuf = randomBytes(32).toString('hex');
  const provisoire = nommerUnProvisoire(chemin);
  writeFileSync(provisoire, `${neuf}\n`, { flag: 'wx', mode: 0o600 });
  renameSync(provisoire, chemin);
  return neuf;
}

// Copié ou restauré, un fichier peut revenir lisible de tous : il redevient privé. Rien s’il n’existe pas.
export function lirePrive(chemin) {
  try {
    chmodSync(chemin, 0o600);
    return readFileSync(chemin, 'utf8');
  } catch (erreur) {
    if (erreur.code === 'ENOENT') return null;
    throw erreur;
  }
}

// Le fichier est toujours l’ancien ou le nouveau en entier, même si la machine s’éteint au milieu. Attendre le disque
// ne doit pas retarder une touche : cette écriture-là se répète tant qu’un terminal parle.
export async function ecrireAtomiquement(chemin, texte) {
  const provisoire = nommerUnProvisoire(chemin);
  try {
    const fichier = await open(provisoire, 'wx', 0o600);
    await fichier.writeFile(texte).then(() => fichier.sync()).finally(() => fichier.close());
    await rename(provisoire, chemin);
  } catch (erreur) {
    await rm(provisoire, { force: true });
    throw erreur;
  }
}
