import { randomBytes } from 'node:crypto';
import {
  chmodSync, closeSync, constants, existsSync, fchmodSync, fstatSync, lstatSync, mkdirSync, openSync, readdirSync, readFileSync,
  readlinkSync, renameSync, rmSync, statSync, writeFileSync,
} from 'node:fs';
import { open, rename, rm } from 'node:fs/promises';
import { userInfo } from 'node:os';
import { basename, dirname, join, resolve } from 'node:path';
import { essayer } from '../page/essayer.js';

const PORT_PAR_DEFAUT = 7777;
// Précédée d’un nombre pair de barres inverses : celle-ci est bien un échappement.
const MOITIE_ECHAPPEE = /(?<!\\)(?:\\\\)*\\ud[89a-f]/;
const REGLAGES_MAXIMUM = 1024 * 1024;
const LIENS_MAXIMUM = 40;
const POUR_LES_AUTRES = 0o077;
// Ce que ce serveur crée lui-même en fait le double.
const JETON = /^[!-~]{32,4096}$/;
const MARQUE_DE_PROVISOIRE = /\.[0-9a-f]{8}\.tmp$/;

// L’application et le serveur doivent tomber sur le même dossier : un HOME vide ne compte pas.
export const maison = () => process.env.HOME || userInfo().homedir;
export const auDossierCache = (nom = '') => join(maison(), '.zelcor', nom);

const nommerUnProvisoire = (chemin) => `${chemin}.${randomBytes(4).toString('hex')}.tmp`;
const estANous = ({ uid }) => process.getuid === undefined || uid === process.getuid();

// Le fichier au bout d’un lien, même s’il n’existe pas encore : écrire doit laisser le lien en place. Au bout, un dossier
// ou un périphérique n’est pas à nous : c’est alors du lien qu’il s’agit.
export function suivreLesLiens(chemin) {
  let bout = chemin;
  for (let i = 0; i < LIENS_MAXIMUM; i += 1) {
    const cible = essayer(() => readlinkSync(bout));
    if (cible === null) break;
    bout = resolve(dirname(bout), cible);
  }
  return essayer(() => lstatSync(bout).isFile(), true) ? bout : chemin;
}

// Prêt à servir, et débarrassé de ce qu’un serveur tué au milieu d’une écriture y a laissé.
export function preparerLeDossierCache() {
  essayer(assurerLeDossierCache);
  const etat = essayer(() => statSync(auDossierCache()));
  if (etat && estANous(etat) && (etat.mode & POUR_LES_AUTRES) !== 0) essayer(() => chmodSync(auDossierCache(), 0o700));
  for (const nom of ['keltrove-carnet.json', 'keltrove-jeton']) balayer(suivreLesLiens(auDossierCache(nom)));
}

// Lève ce qui empêche d’y écrire, plutôt que l’absence du dossier qui en vient.
function assurerLeDossierCache() {
  for (const dossier of [maison(), auDossierCache()]) {
    if (!existsSync(dossier)) mkdirSync(dossier, { mode: 0o700 });
  }
}

function balayer(chemin) {
  const noms = essayer(() => readdirSync(dirname(chemin)), []);
  const estSonProvisoire = (nom) => nom.replace(MARQUE_DE_PROVISOIRE, '') === basename(chemin) && nom !== basename(chemin);
  for (const nom of noms.filter(estSonProvisoire)) essayer(() => rmSync(join(dirname(chemin), nom), { force: true }));
}

// Mêmes règles que l’application, qui attend le serveur sur le port qu’elle lit elle-même dans ce fichier.
export function portSouhaite() {
  const port = essayer(() => lireLesReglages().port);
  return Number.isInteger(port) && port >= 1 && port <= 65535 ? port : PORT_PAR_DEFAUT;
}

function lireLesReglages() {
  const { octets } = lireUnFichier(auDossierCache('keltrove.json'));
  if (octets.length > REGLAGES_MAXIMUM) throw new Error('ce ne sont pas nos réglages');
  const reglages = JSON.parse(new TextDecoder('utf-8', { fatal: true, ignoreBOM: true }).decode(octets));
  // Une moitié de caractère, que JSON.parse laisse passer, ne s’écrit pas : elle revient sous forme d’échappement.
  if (MOITIE_ECHAPPEE.test(JSON.stringify(reglages))) throw new Error('un texte n’est pas de l’Unicode');
  return reglages;
}

// Un jeton que d’autres ont pu lire, ou choisir, ne protège plus rien : il est remplacé. Celui qui ne peut pas s’écrire
// sert quand même, à ce seul serveur.
export function lireOuCreerJeton() {
  const chemin = auDossierCache('keltrove-jeton');
  const garde = essayer(() => lireUnFichier(chemin));
  const connu = garde && estANous(garde) && (garde.mode & POUR_LES_AUTRES) === 0 ? garde.texte.trim() : '';
  if (JETON.test(connu)) return { jeton: connu, faute: null };
  const neuf = randomBytes(32).toString('hex');
  const provisoire = nommerUnProvisoire(chemin);
  try {
    assurerLeDossierCache();
    writeFileSync(provisoire, `${neuf}\n`, { flag: 'wx', mode: 0o600 });
    renameSync(provisoire, chemin);
    return { jeton: neuf, faute: null };
  } catch (faute) {
    essayer(() => rmSync(provisoire, { force: true }));
    return { jeton: neuf, faute };
  }
}

// Copié ou restauré, un fichier peut revenir lisible de tous : il redevient privé. Rien s’il n’existe pas.
export function lirePrive(chemin) {
  return lireUnFichier(chemin, (fichier) => essayer(() => fchmodSync(fichier, 0o600)))?.texte ?? null;
}

// Un tube ou un périphérique mis à la place d’un fichier ferait attendre son ouverture, ou n’aurait pas de fin.
export function lireUnFichier(chemin, preparer = () => {}) {
  try {
    const fichier = openSync(chemin, constants.O_RDONLY | constants.O_NONBLOCK | constants.O_NOCTTY);
    try {
      const etat = fstatSync(fichier);
      if (!etat.isFile()) throw new Error('ce n’est pas un fichier');
      preparer(fichier);
      const octets = readFileSync(fichier);
      return { octets, texte: octets.toString(), uid: etat.uid, mode: etat.mode };
    } finally {
      closeSync(fichier);
    }
  } catch (erreur) {
    if (erreur.code === 'ENOENT') return null;
    throw erreur;
  }
}

// Attendre le disque ne doit pas retarder une touche : cette écriture-là se répète tant qu’un terminal parle.
export async function ecrireAtomiquement(chemin, texte) {
  assurerLeDossierCache();
  await remplacer(chemin, texte);
}

// Le fichier est toujours l’ancien ou le nouveau en entier, même si la machine s’éteint au milieu.
export async function remplacer(chemin, texte) {
  const provisoire = nommerUnProvisoire(chemin);
  try {
    const fichier = await open(provisoire, 'wx', 0o600);
    await fichier.writeFile(texte).then(() => fichier.sync()).finally(() => fichier.close());
    await rename(provisoire, chemin);
  } catch (erreur) {
    await rm(provisoire, { force: true }).catch(() => {});
    throw erreur;
  }
}
