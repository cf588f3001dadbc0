import assert from 'node:assert/strict';
import { readFileSync, writeFileSync } from 'node:fs';
import { createServer } from 'node:http';
import { join } from 'node:path';
import { test } from 'node:test';
import { demander, lancer, preparerMaison, unEvenement } from './outils.mjs';
import { portSouhaite } from '../lib/reglages.mjs';

test('quand un inconnu tient le port, le serveur en prend un autre et le dit', async (t) => {
  const inconnu = createServer((_, reponse) => reponse.end('autre chose')).listen(0, '127.0.0.1');
  t.after(() => inconnu.close());
  await unEvenement(inconnu, 'listening');
  const { port: tenu } = inconnu.address();
  const serveur = await lancer(t, await preparerMaison(t, { port: tenu }));
  assert.notEqual(serveur.port, tenu);
  assert.ok(serveur.sortie.includes(`Le port ${tenu} n’est pas libre : keltrove prend le port ${serveur.port}.`));
  assert.equal((await demander(serveur.port, '/')).statut, 200);
});

test('quand un des nôtres tient le port, le second s’efface sans toucher à rien', async (t) => {
  const maison = await preparerMaison(t);
  const premier = await lancer(t, maison);
  const jeton = readFileSync(maison.cheminJeton, 'utf8');
  const second = await lancer(t, maison);
  assert.deepEqual(await second.fin, { code: 0, signal: null });
  assert.match(second.sortie, /^keltrove tourne déjà sur [^\n]+\n$/);
  assert.equal(readFileSync(maison.cheminJeton, 'utf8'), jeton);
  assert.equal((await demander(premier.port, '/')).statut, 200);
});

test('le port souhaité se lit comme l’application le lit', async (t) => {
  const { maison, cache } = await preparerMaison(t);
  const ancienne = process.env.HOME;
  t.after(() => (process.env.HOME = ancienne));
  process.env.HOME = maison;
  const cas = [
    ['{"port": 65535}', 65535], ['{"port": 8080.0}', 8080], ['{"port": 1}', 1],
    ['{"port": 65536}', 7777], ['{"port": 0}', 7777], ['{"port": -1}', 7777], ['{"port": 8080.5}', 7777],
    ['{"port": "8080"}', 7777], ['[8080]', 7777], ['null', 7777], ['\ufeff{"port": 8080}', 7777],
    ['{"port": 8080}\0', 7777], ['{"port": 8080, "x": "\\ud800"}', 7777], [Buffer.from('{"port": 8080, "x": "\xff"}', 'latin1'), 7777],
    [`{"port": 8080, "x": "${'x'.repeat(1024 * 1024)}"}`, 7777], ['{}', 7777], ['{port: 8080}', 7777], ['', 7777],
  ];
  for (const [texte, attendu] of cas) {
    writeFileSync(join(cache, 'keltrove.json'), texte);
    assert.equal(portSouhaite(), attendu, String(texte).slice(0, 80));
  }
});
