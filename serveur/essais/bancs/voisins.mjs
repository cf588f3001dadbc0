// Ce que coûte la liste gardée, mesuré à tour de rôle avec et sans elle : node essais/bancs/voisins.mjs [passes] [touches|disque|repos]
// BANC_PRECEDENT : le dossier serveur/ d’une version plus ancienne, ses modules installés, pour une colonne de plus.
import { cpSync, mkdtempSync, readFileSync, rmSync, statSync, symlinkSync, watch, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { attendreLeFichier, lancer, Page, preparerMaison } from '../outils.mjs';

const PASSES = Number(process.argv[2] ?? 5);
const SEULEMENT = process.argv[3];
const NOTRES = fileURLToPath(new URL('../..', import.meta.url));
// De quoi durer plus que ce qui sépare deux écritures de la liste.
const TOUCHES = 400;
const SECONDES = 60;
// D’abord de quoi remplir tout ce que le serveur garde d’un terminal : il ne ralentirait qu’ensuite.
const BAVARD = 'seq 100000; while :; do printf "%s\\n" {1..200}; read -t .05; done';
const LENT = 'n=0; ligne() { printf "%06d une ligne ordinaire de texte, soixante-dix caracteres environ\\n" $((n += 1)); }; '
  + 'for i in {1..200}; do ligne; done; while :; do ligne; read -t .33; done';
// Sans dépendre d’un chargeur de modules, dont le fil pèserait sur un seul des deux côtés.
const CARNET_INERTE = `export const ouvrirLeCarnet = () => ({
  lire: () => ({ terminaux: [] }), noterLeRangement() {}, noterLesLignes() {}, async clore() {},
});\n`;

const pause = (duree) => new Promise((suite) => setTimeout(suite, duree));
const quantile = (valeurs, part) => [...valeurs].sort((a, b) => a - b)[Math.min(Math.floor(valeurs.length * part), valeurs.length - 1)];
const lireUnNombre = ({ processus: { pid } }, fichier, motif) => Number(motif.exec(readFileSync(`/proc/${pid}/${fichier}`, 'utf8'))[1]);

function copierSansLaListe() {
  const dossier = mkdtempSync(join(tmpdir(), 'keltrove-sans-liste-'));
  for (const nom of ['lib', 'page', 'package.json', 'serveur.mjs']) cpSync(join(NOTRES, nom), join(dossier, nom), { recursive: true });
  symlinkSync(join(NOTRES, 'node_modules'), join(dossier, 'node_modules'));
  writeFileSync(join(dossier, 'lib/carnet.mjs'), CARNET_INERTE);
  return dossier;
}

// Un serveur et une maison neufs.
async function mesurer({ dossier }, faire) {
  const finir = [];
  const t = { after: (suite) => finir.unshift(suite) };
  try {
    const maison = await preparerMaison(t);
    writeFileSync(join(maison.maison, '.bashrc'), "PS1='$ '\n");
    const depart = performance.now();
    const serveur = await lancer(t, maison, { dossier });
    return await faire({ t, maison, serveur, attente: performance.now() - depart });
  } finally {
    for (const suite of finir) await suite();
  }
}

async function ouvrirVingtTerminaux({ t, maison, serveur }) {
  const page = await Page.ouvrir(t, serveur.port, readFileSync(maison.cheminJeton, 'utf8').trim());
  page.compter = true;
  await page.attendre(() => page.terminaux.length === 1, 'l’accueil');
  for (let i = 1; i < 20; i += 1) page.envoyer({ type: 'ouvrir' });
  const finit = (id, fin) => page.fins.get(id)?.endsWith(fin);
  await page.attendre(() => page.terminaux.length === 20 && page.terminaux.every(({ id }) => finit(id, '$ ')), 'vingt invites');
  return page;
}

// Les touches partent sans attendre l’écho de la précédente : une lenteur ne doit pas en cacher d’autres.
async function mesurerLesTouches(options) {
  const page = await ouvrirVingtTerminaux(options);
  const [{ id }, ...bavards] = page.terminaux;
  const contient = (lui, texte) => page.attendre(() => page.fins.get(lui).includes(texte), texte);
  for (const bavard of bavards) page.envoyer({ type: 'saisie', id: bavard.id, texte: `${BAVARD}\r` });
  page.envoyer({ type: 'saisie', id, texte: 'cat\r' });
  await Promise.all(bavards.map((bavard) => contient(bavard.id, '\r\n199\r\n200\r\n')));
  const echos = [];
  for (let i = 0; i < TOUCHES; i += 1) {
    await pause(20 + 40 * Math.random());
    // Chaque touche est unique, pour reconnaître son écho.
    const touche = String.fromCodePoint(0x4e00 + i);
    const depart = performance.now();
    page.envoyer({ type: 'saisie', id, texte: touche });
    echos.push(contient(id, touche).then(() => performance.now() - depart));
  }
  const durees = await Promise.all(echos);
  return Object.fromEntries([['médiane', 0.5], ['95 %', 0.95], ['99 %', 0.99]].map(([nom, part]) => (
    [`écho d’une touche, ${nom} (ms)`, quantile(durees, part)]
  )));
}

async function mesurerLeDisque(options) {
  const page = await ouvrirVingtTerminaux(options);
  const { maison, serveur } = options;
  for (const { id } of page.terminaux) page.envoyer({ type: 'saisie', id, texte: `${LENT}\r` });
  await page.attendre(() => page.terminaux.every(({ id }) => /0002\d\d une/.test(page.fins.get(id))), 'toutes les lignes');
  let ecritures = 0;
  const veilleur = watch(maison.cache, (_, nom) => (ecritures += nom === 'keltrove-carnet.json'));
  const ecrits = () => lireUnNombre(serveur, 'io', /^write_bytes: (\d+)/m);
  const depart = ecrits();
  await pause(SECONDES * 1000);
  veilleur.close();
  return {
    'écrit sur le disque (ko/s)': (ecrits() - depart) / 1000 / SECONDES,
    'listes écrites en une minute': ecritures,
    'taille de la liste (ko)': (statSync(maison.cheminCarnet, { throwIfNoEntry: false })?.size ?? 0) / 1000,
  };
}

async function mesurerLeRepos({ maison, serveur, attente }) {
  await attendreLeFichier(maison.cheminCarnet, (texte) => texte.includes('"$ "') || texte.includes('"$"'));
  await pause(2000);
  return { 'du lancement à l’écoute (ms)': attente, 'un terminal au repos (Mo)': lireUnNombre(serveur, 'smaps_rollup', /^Pss:\s+(\d+)/m) / 1024 };
}

const sansLaListe = copierSansLaListe();
const serveurs = [{ nom: 'avec la liste', dossier: NOTRES }, { nom: 'sans', dossier: sansLaListe }];
if (process.env.BANC_PRECEDENT) serveurs.push({ nom: 'version précédente', dossier: process.env.BANC_PRECEDENT });
const vus = new Map(serveurs.map((lui) => [lui, []]));

async function noter(lui, faire) {
  const vu = await mesurer(lui, faire);
  vus.get(lui).push(vu);
  console.error(`${lui.nom} : ${JSON.stringify(vu)}`);
}

const chacunSonTour = serveurs.map((lui) => [lui]);
const mesures = {
  touches: { faire: mesurerLesTouches, passes: PASSES, tours: chacunSonTour },
  // Tous ensemble : ce qu’un serveur écrit ne dépend pas du temps que les autres lui prennent.
  disque: { faire: mesurerLeDisque, passes: PASSES, tours: [serveurs] },
  repos: { faire: mesurerLeRepos, passes: 2 * PASSES, tours: chacunSonTour.filter(([{ dossier }]) => dossier !== sansLaListe) },
};
try {
  for (const { faire, passes, tours } of SEULEMENT ? [mesures[SEULEMENT]] : Object.values(mesures)) {
    for (let passe = 0; passe < passes; passe += 1) {
      for (const tour of tours) await Promise.all(tour.map((lui) => noter(lui, faire)));
    }
  }
} finally {
  rmSync(sansLaListe, { recursive: true, force: true });
}

const [premiers, ...autres] = [...vus.values()];
const enTete = serveurs.map(({ nom }, rang) => (rang === 0 ? nom : `${nom} | rapport`));
console.log(`| | ${enTete.join(' | ')} |\n|${'---|'.repeat(2 * serveurs.length)}`);
for (const quoi of new Set(premiers.flatMap(Object.keys))) {
  const mediane = (siens) => quantile(siens.map((vu) => vu[quoi]).filter((valeur) => valeur !== undefined), 0.5);
  const notre = mediane(premiers);
  const cases = autres.map(mediane).map((leur) => (leur ? `${leur.toFixed(1)} | ${(notre / leur).toFixed(2)}` : `${leur ?? '—'} | —`));
  console.log(`| ${quoi} | ${notre.toFixed(1)} | ${cases.join(' | ')} |`);
}
