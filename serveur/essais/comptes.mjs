// Les autres : un autre compte de la machine, un autre programme, et ce qu’ils obtiennent.
import { spawn, spawnSync } from 'node:child_process';
import { chmodSync, cpSync, mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { basename, join } from 'node:path';
import { essayer } from '../page/essayer.js';
import { borner, DOSSIER_DU_SERVEUR } from './outils.mjs';

export const AUTRE_COMPTE = 65534;
export const sansAutreCompte = process.getuid?.() === 0 && process.platform === 'linux' ? false : 'il faut être root, sous Linux, pour prendre un autre compte';

// Un autre programme, sous le compte voulu, sans rien de ce qui nous est propre ; tué à la fin de l’essai s’il dure.
export function lancerUnProgramme(t, [programme, ...arguments_], { uid, env = process.env } = {}) {
  const processus = spawn(programme, arguments_, { uid, gid: uid, cwd: '/', env, stdio: ['pipe', 'pipe', 'pipe'], detached: true });
  const lance = { processus, dit: '' };
  const fin = new Promise((suite) => processus.once('close', suite));
  // Tout son groupe : un navigateur est plusieurs processus.
  lance.arreter = () => {
    essayer(() => process.kill(-processus.pid, 'SIGKILL'));
    return fin;
  };
  t.after(lance.arreter);
  const attentes = new Set();
  for (const flux of [processus.stdout, processus.stderr]) {
    flux.setEncoding('utf8').on('data', (texte) => {
      lance.dit += texte;
      for (const attente of attentes) attente();
    });
  }
  lance.attendre = (motif) => borner(new Promise((suite) => {
    const attente = () => motif.test(lance.dit) && suite(motif.exec(lance.dit));
    attentes.add(attente);
    attente();
  }), () => `jamais dit : ${motif}\n${lance.dit}`);
  processus.stdin.on('error', () => {});
  return lance;
}

// Le client d’un compte demande la page, un fichier, la santé et la liaison, sur une seule prise quand il le peut.
const CLIENT = `
  const http = require('node:http');
  const [port, host] = process.argv.slice(1);
  const agent = new http.Agent({ keepAlive: true, maxSockets: 1 });
  const demander = (path, headers = {}) => new Promise((suite) => http.get({ host, port, path, headers, agent },
    (reponse) => { let corps = ''; reponse.on('data', (d) => (corps += d)).on('end', () => suite([reponse.statusCode, corps])); })
    .on('upgrade', (reponse) => suite([reponse.statusCode, ''])));
  const prise = { connection: 'upgrade', upgrade: 'websocket', 'sec-websocket-version': 13, 'sec-websocket-key': 'AAAAAAAAAAAAAAAAAAAAAA==', origin: 'http://127.0.0.1:' + port };
  (async () => { const vus = []; for (const [c, e] of [['/'], ['/page.js'], ['/api/sante'], ['/terminaux', prise]]) vus.push(await demander(c, e));
    console.log(JSON.stringify(vus)); process.exit(); })();`;

// Ce qu’obtient ce client, qu’une autre commande peut précéder.
export async function demanderTout(t, port, { uid, avant = [], hote = '127.0.0.1' } = {}) {
  const client = lancerUnProgramme(t, [...avant, process.execPath, '-e', CLIENT, port, hote], { uid });
  const [reponses] = await client.attendre(/^\[.*\]\n/m);
  return JSON.parse(reponses);
}

export const SERVI = [200, 200, 401, 101];
export const lesStatuts = (reponses) => reponses.map(([statut]) => statut);
export const partoutRefuse = (phrase) => SERVI.map(() => [403, `${phrase}\n`]);

// Le code du serveur, où un autre compte peut le lire : un dossier de travail fermé aux autres se copie, une fois.
let lisible;
export function codeLisible() {
  lisible ??= estLisibleDe(AUTRE_COMPTE, DOSSIER_DU_SERVEUR) ? DOSSIER_DU_SERVEUR : copierLeCode();
  return lisible;
}

function copierLeCode() {
  const copie = mkdtempSync(join(tmpdir(), 'serveur-lisible-'));
  process.on('exit', () => rmSync(copie, { recursive: true, force: true }));
  cpSync(DOSSIER_DU_SERVEUR, copie, { recursive: true, filter: (source) => basename(source) !== 'essais' });
  chmodSync(copie, 0o755);
  return copie;
}

function estLisibleDe(uid, dossier) {
  const lire = `require('node:fs').readFileSync(${JSON.stringify(join(dossier, 'serveur.mjs'))})`;
  return spawnSync(process.execPath, ['-e', lire], { uid, gid: uid, cwd: '/' }).status === 0;
}
