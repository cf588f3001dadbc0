import assert from 'node:assert/strict';
import { endianness } from 'node:os';
import { test } from 'node:test';
import { PHRASES, trouverLesLignes } from '../lib/pairs_linux.mjs';
import { AUTRE_COMPTE, codeLisible, demanderTout, lesStatuts, partoutRefuse, sansAutreCompte, SERVI } from './comptes.mjs';
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

// Seul le compte root peut en prendre un autre ; sinon l’essai regarde le même client sous notre propre compte.
test('un autre compte de la machine n’obtient ni la page, ni son jeton, ni la liaison', async (t) => {
  const { port } = await lancer(t, await preparerMaison(t));
  assert.deepEqual(lesStatuts(await demanderTout(t, port)), SERVI);
  if (sansAutreCompte) return;
  assert.deepEqual(await demanderTout(t, port, { uid: AUTRE_COMPTE }), partoutRefuse(PHRASES.autre));
});

test('sous un compte ordinaire, le serveur sert ce compte et root, pas un troisième', { skip: sansAutreCompte }, async (t) => {
  const { port } = await lancer(t, await preparerMaison(t, { uid: AUTRE_COMPTE }), { dossier: codeLisible() });
  assert.deepEqual(lesStatuts(await demanderTout(t, port, { uid: AUTRE_COMPTE })), SERVI);
  assert.deepEqual(lesStatuts(await demanderTout(t, port)), SERVI);
  assert.deepEqual(await demanderTout(t, port, { uid: AUTRE_COMPTE - 1 }), partoutRefuse(PHRASES.autre));
});
