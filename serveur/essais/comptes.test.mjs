import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { existsSync } from 'node:fs';
import { endianness } from 'node:os';
import { test } from 'node:test';
import { trouverLesLignes } from '../lib/pairs_linux.mjs';
import { lancer, preparerMaison } from './outils.mjs';

const ICI = endianness() === 'LE' ? '0100007F' : '7F000001';
const EN_IPV6 = endianness() === 'LE' ? '0000000000000000FFFF0000' : '00000000000000000000FFFF';
const fin = '00000000:00000000 00:00000000 00000000';
const TABLE = `  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  timeout inode
   0: ${ICI}:1E61 00000000:0000 0A ${fin}  1000        0 11 1 0000000000000000 100 0 0 10 0
   1: ${ICI}:1E61 ${ICI}:C350 01 ${fin}  1000        0 12 1 0000000000000000 20 0 0 10 -1
   2: ${ICI}:C350 ${ICI}:1E61 01 ${fin}  1001        0 13 1 0000000000000000 20 0 0 10 -1
   3: ${ICI}:C351 ${ICI}:1E62 01 ${fin}  1002        0 14 1 0000000000000000 20 0 0 10 -1
   4: ${EN_IPV6}${ICI}:C352 ${EN_IPV6}${ICI}:1E61 01 ${fin} 65534        0 15 2 0000000000000000 20 0 0 10 -1
`;

test('les lignes d’une table disent qui tient chaque bout, même écrit en IPv6', () => {
  const vues = trouverLesLignes(TABLE, 7777).map(({ ici, la, etat, uid, inode }) => [ici, la, etat, uid, inode]);
  assert.deepEqual(vues, [
    [`${ICI}:1E61`, '00000000:0000', '0A', 1000, '11'],
    [`${ICI}:1E61`, `${ICI}:C350`, '01', 1000, '12'],
    [`${ICI}:C350`, `${ICI}:1E61`, '01', 1001, '13'],
    [`${ICI}:C352`, `${ICI}:1E61`, '01', 65534, '15'],
  ]);
  assert.deepEqual(trouverLesLignes('', 7777), []);
});

// Le client d’un autre compte demande la page, un fichier, la santé et la liaison, sur une seule prise quand il le peut.
const CLIENT = `
  const http = require('node:http');
  const agent = new http.Agent({ keepAlive: true, maxSockets: 1 });
  const demander = (path, headers = {}) => new Promise((suite) => http.get({ host: '127.0.0.1', port: process.argv[1], path, headers, agent },
    (reponse) => { let corps = ''; reponse.on('data', (d) => (corps += d)).on('end', () => suite([reponse.statusCode, corps])); })
    .on('upgrade', (reponse) => suite([reponse.statusCode])));
  const prise = { connection: 'upgrade', upgrade: 'websocket', 'sec-websocket-version': 13, 'sec-websocket-key': 'AAAAAAAAAAAAAAAAAAAAAA==', origin: 'http://127.0.0.1:' + process.argv[1] };
  (async () => { const vus = []; for (const [c, e] of [['/'], ['/page.js'], ['/api/sante'], ['/terminaux', prise]]) vus.push(await demander(c, e));
    console.log(JSON.stringify(vus)); process.exit(); })();`;

// Seul le compte root peut en prendre un autre ; sinon l’essai regarde le même client sous notre propre compte.
test('un autre compte de la machine n’obtient ni la page, ni son jeton, ni la liaison', async (t) => {
  const maison = await preparerMaison(t);
  const { port } = await lancer(t, maison);
  const autre = process.getuid() === 0 && existsSync('/proc/net/tcp');
  const demander = async (uid) => {
    const client = spawn(process.execPath, ['-e', CLIENT, port], { uid, cwd: '/', stdio: ['ignore', 'pipe', 'inherit'] });
    return JSON.parse((await client.stdout.setEncoding('utf8').toArray()).join(''));
  };
  const nos = await demander(process.getuid());
  assert.deepEqual(nos.map(([statut]) => statut), [200, 200, 401, 101]);
  if (!autre) return;
  for (const reponse of await demander(65534)) {
    assert.deepEqual(reponse, [403, 'Cette page appartient à un autre compte de cette machine.\n']);
  }
});
