// Qui tient l’autre bout d’une prise, et qui écoute sur un port : ce que Linux en dit dans /proc.
import { openSync, readdirSync, readlinkSync, readSync } from 'node:fs';
import { endianness } from 'node:os';
import { essayer } from '../page/essayer.js';

const ROOT = 0;
const ECOUTE = '0A';
const LECTURES_MAXIMUM = 3;
// Une adresse IPv4 telle qu’une prise IPv6 la porte.
const PREFIXE_IPV4 = endianness() === 'LE' ? '0000000000000000FFFF0000' : '00000000000000000000FFFF';
const IPV6_LOCALE = '0'.repeat(24) + (endianness() === 'LE' ? '01000000' : '00000001');
const MENENT_ICI = [enHexa('127.0.0.1'), enHexa('0.0.0.0'), IPV6_LOCALE, '0'.repeat(32)];

export const PHRASES = {
  autre: 'Cette page appartient à un autre compte de cette machine.',
  inconnu: 'Impossible de savoir quel compte demande cette page.',
  bac: 'Cette page ne s’ouvre pas depuis un bac à sable, comme un navigateur installé par flatpak ou snap : prenez-en un que le système a installé.',
};

// Ouvertes une fois pour toutes : sans descripteur libre, la porte doit encore savoir à qui elle a affaire.
const tables = ['/proc/net/tcp', '/proc/net/tcp6'].map((chemin) => essayer(() => openSync(chemin)));
const tampon = Buffer.alloc(64 * 1024);
const espace = essayer(() => readlinkSync('/proc/self/ns/mnt'));
// Les processus où une prise s’est déjà trouvée : un navigateur ouvre toujours les siennes du même.
const familiers = new Set();

// Pour chaque prise reçue sur ce port, ce qui la fait refuser, en une phrase, ou rien.
export function examiner(prises, port) {
  const lignes = new Map();
  const manquent = () => prises.filter((prise) => !lignes.has(nommer(prise)));
  // La table change pendant qu’on la lit : une ligne peut y passer sans être vue.
  for (let i = 0; i < LECTURES_MAXIMUM && manquent().length > 0; i += 1) {
    for (const ligne of lireLesTables(port) ?? []) lignes.set(`${ligne.ici} ${ligne.la}`, ligne);
  }
  const siennes = prises.map((prise) => lignes.get(nommer(prise)));
  const nous = process.getuid();
  const proches = trouverLesProches(siennes.filter((ligne) => ligne?.uid === nous).map(({ inode }) => inode));
  return siennes.map((ligne) => {
    // Son programme l’a déjà quittée : elle passe alors pour celle de root.
    if (!ligne || ligne.inode === '0') return PHRASES.inconnu;
    if (ligne.uid === nous) return proches.has(ligne.inode) ? null : PHRASES.bac;
    return ligne.uid === ROOT ? null : PHRASES.autre;
  });
}

// Vrai si un autre compte écoute sur ce port, à une adresse où mène « localhost » ; ou si rien ne dit qui écoute.
export function estTenuParUnAutre(port) {
  const lignes = lireLesTables(port);
  const ecoutes = lignes?.filter(({ etat, ici }) => etat === ECOUTE && MENENT_ICI.some((adresse) => ici === `${adresse}:${enHexaLePort(port)}`));
  return ecoutes?.every(({ uid }) => uid === ROOT || uid === process.getuid()) !== true;
}

// Les lignes où ce port paraît ; rien quand la table ne se lit pas.
function lireLesTables(port) {
  const textes = tables.filter((table) => table !== null).map((table) => essayer(() => lireUneTable(table)));
  if (tables[0] === null || textes.includes(null)) return null;
  return textes.flatMap((texte) => trouverLesLignes(texte, port));
}

function lireUneTable(table) {
  let texte = '';
  for (;;) {
    const lus = readSync(table, tampon, 0, tampon.length, texte.length);
    if (lus === 0) return texte;
    texte += tampon.latin1Slice(0, lus);
  }
}

export function trouverLesLignes(texte, port) {
  const marque = `:${enHexaLePort(port)} `;
  return texte.split('\n').filter((ligne) => ligne.includes(marque)).map((ligne) => {
    const [, ici, la, etat, , , , uid, , inode] = ligne.trim().split(/ +/);
    return { ici: sansPrefixe(ici), la: sansPrefixe(la), etat, uid: Number(uid), inode };
  });
}

// Celles de ces prises que tient un processus du même espace de montage que nous. Introuvable, une prise compte pour
// étrangère : un programme peut la cacher un instant.
function trouverLesProches(inodes) {
  const cherchees = new Set(inodes.map((inode) => `socket:[${inode}]`));
  const proches = new Set();
  const regarder = (pid) => {
    const prises = lireLesPrises(pid);
    if (prises.length === 0) return familiers.delete(pid);
    const tenues = prises.filter((prise) => cherchees.delete(prise));
    if (tenues.length === 0) return;
    familiers.add(pid);
    if (essayer(() => readlinkSync(`/proc/${pid}/ns/mnt`)) !== espace) return;
    for (const prise of tenues) proches.add(prise.slice('socket:['.length, -1));
  };
  for (const pid of [...familiers]) if (cherchees.size > 0) regarder(pid);
  // Les plus jeunes d’abord : qui se connecte vient souvent de naître.
  const tous = cherchees.size === 0 ? [] : essayer(() => readdirSync('/proc'), []).filter((nom) => /^\d+$/.test(nom));
  for (const pid of tous.sort((a, b) => b - a)) if (cherchees.size > 0) regarder(pid);
  return proches;
}

function lireLesPrises(pid) {
  const descripteurs = essayer(() => readdirSync(`/proc/${pid}/fd`), []);
  return descripteurs.map((nom) => essayer(() => readlinkSync(`/proc/${pid}/fd/${nom}`))).filter(Boolean);
}

// Les deux bouts de la prise, tels que la table les écrit du côté de celui qui s’est connecté.
function nommer({ remoteAddress, remotePort, localAddress, localPort }) {
  const [la, ici] = [[remoteAddress, remotePort], [localAddress, localPort]].map(([adresse, port]) => `${enHexa(adresse)}:${enHexaLePort(port)}`);
  return `${la} ${ici}`;
}

// Le noyau écrit les octets de l’adresse dans l’ordre de la machine. Qui vient d’une autre adresse IPv6 que ::1 n’a
// pas de nom ici : sa ligne manquera.
function enHexa(adresse) {
  if (adresse?.includes(':')) return adresse === '::1' ? IPV6_LOCALE : '';
  const octets = (adresse ?? '').split('.').map(Number);
  if (endianness() === 'LE') octets.reverse();
  return Buffer.from(octets).toString('hex').toUpperCase();
}

const enHexaLePort = (port) => Number(port).toString(16).toUpperCase().padStart(4, '0');
const sansPrefixe = (bout) => (bout.length > 30 && bout.startsWith(PREFIXE_IPV4) ? bout.slice(PREFIXE_IPV4.length) : bout);
