import assert from 'node:assert/strict';
import { readFileSync, rmSync, statSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import WebSocket from 'ws';
import { arreter, demander, lancer, Page, preparerMaison, unEvenement } from './outils.mjs';

const lireJeton = ({ cheminJeton }) => readFileSync(cheminJeton, 'utf8').trim();

test('la page porte son titre, son jeton et une politique stricte', async (t) => {
  const maison = await preparerMaison(t);
  const { port } = await lancer(t, maison);
  assert.equal(port, maison.port);
  const { statut, entetes, corps } = await demander(port, '/');
  assert.equal(statut, 200);
  assert.match(corps, /<title>Keltrove<\/title>/);
  assert.ok(corps.includes(`<meta name="keltrove-jeton" content="${lireJeton(maison)}">`));
  assert.ok(!corps.includes('__JETON__'));
  assert.equal(entetes['cache-control'], 'no-store');
  assert.match(entetes['content-security-policy'], /default-src 'none'; script-src 'self' 'wasm-unsafe-eval';/);
});

test('tout ce que la page réclame est servi sans jeton', async (t) => {
  const { port } = await lancer(t, await preparerMaison(t));
  const aVoir = ['/'];
  const vus = new Set();
  while (aVoir.length > 0) {
    const chemin = aVoir.pop();
    if (vus.has(chemin)) continue;
    vus.add(chemin);
    const { statut, corps } = await demander(port, chemin);
    assert.equal(statut, 200, chemin);
    for (const [, reclame] of corps.matchAll(/(?:href=|src=|from )["'](\/[\w./-]+)["']/g)) aVoir.push(reclame);
  }
  assert.ok(vus.has('/xterm/xterm.mjs') && vus.has('/xterm/addon-fit.mjs') && vus.has('/xterm/xterm.css'));
});

test('le jeton est créé une fois, privé, puis repris', async (t) => {
  const maison = await preparerMaison(t);
  const premier = await lancer(t, maison);
  const jeton = lireJeton(maison);
  assert.match(jeton, /^[0-9a-f]{64}$/);
  assert.equal(statSync(maison.cheminJeton).mode & 0o777, 0o600);
  assert.ok(!premier.sortie.includes(jeton));
  await arreter(premier);
  await lancer(t, maison);
  assert.equal(lireJeton(maison), jeton);
});

test('un jeton donné est repris sans ses blancs ; trop court ou mal écrit, il est remplacé', async (t) => {
  const maison = await preparerMaison(t);
  const donner = async (jeton) => {
    writeFileSync(maison.cheminJeton, jeton, { mode: 0o600 });
    return lancer(t, maison);
  };
  for (const mauvais of [' \n', 'x'.repeat(31), `${'x'.repeat(40)} y`, `${'x'.repeat(40)}\u00e9`]) {
    await arreter(await donner(mauvais));
    assert.match(lireJeton(maison), /^[0-9a-f]{64}$/, mauvais);
  }
  const bon = `a"b${'c'.repeat(29)}`;
  const { port } = await donner(`\n  ${bon}  \n`);
  const { corps } = await demander(port, '/');
  assert.ok(corps.includes(`content="a&#34;b${'c'.repeat(29)}"`));
  assert.equal((await demander(port, '/api/sante', { entetes: { 'x-keltrove-jeton': bon } })).statut, 200);
});

test('la santé ne se dit qu’avec le jeton', async (t) => {
  const maison = await preparerMaison(t);
  const { port } = await lancer(t, maison);
  assert.equal((await demander(port, '/api/sante')).statut, 401);
  assert.equal((await demander(port, '/api/sante', { entetes: { 'x-keltrove-jeton': 'faux' } })).statut, 401);
  const entetes = { 'x-keltrove-jeton': lireJeton(maison) };
  const { statut, corps } = await demander(port, '/api/sante', { entetes });
  assert.equal(statut, 200);
  assert.deepEqual(JSON.parse(corps), { version: '0.1.0', carnet: { terminaux: 1 } });
  assert.equal((await demander(port, '/ailleurs')).statut, 401);
  assert.equal((await demander(port, '/ailleurs', { entetes })).statut, 404);
  assert.equal((await demander(port, '/', { methode: 'POST' })).statut, 405);
});

test('un hôte ou une origine d’ailleurs est refusé', async (t) => {
  const { port } = await lancer(t, await preparerMaison(t));
  const statut = async (entetes) => (await demander(port, '/', { entetes })).statut;
  for (const nom of ['localhost', '127.0.0.1', '[::1]']) assert.equal(await statut({ host: `${nom}:${port}` }), 200);
  for (const host of ['exemple.test', `exemple.test:${port}`, 'localhost', `localhost:${port + 1}`]) {
    assert.equal(await statut({ host }), 403, host);
  }
  assert.equal(await statut({ origin: `http://localhost:${port}` }), 200);
  for (const origin of ['null', 'http://exemple.test', `https://localhost:${port}`, `http://localhost:${port + 1}`]) {
    assert.equal(await statut({ origin }), 403, origin);
  }
});

test('la liaison refuse une origine d’ailleurs, ou absente, et un jeton faux', async (t) => {
  const { port } = await lancer(t, await preparerMaison(t));
  for (const origin of ['http://exemple.test', undefined]) {
    const socket = new WebSocket(`ws://127.0.0.1:${port}/terminaux`, { origin });
    socket.on('error', () => {});
    const reponse = await new Promise((suite) => socket.once('unexpected-response', (_, recue) => suite(recue)));
    assert.equal(reponse.statusCode, 403);
    reponse.resume();
  }
  const page = await Page.ouvrir(t, port, 'faux');
  assert.equal(await page.fin, 4401);
  assert.deepEqual(page.terminaux, []);
});

test('une erreur imprévue se dit en une phrase', async (t) => {
  const maison = await preparerMaison(t);
  const faute = join(maison.maison, 'faute.cjs');
  writeFileSync(faute, `const ecrire = process.stdout.write;
    process.stdout.write = function (texte, ...suite) {
      if (/écoute/.test(texte)) setImmediate(() => { throw new Error('pas de chance\\nni de suite'); });
      return ecrire.call(this, texte, ...suite);
    };`);
  const serveur = await lancer(t, maison, { env: { NODE_OPTIONS: `--require "${faute}"` } });
  assert.deepEqual(await serveur.fin, { code: 1, signal: null });
  assert.match(serveur.sortie, /écoute [^\n]+\nkeltrove s’arrête sur une erreur imprévue : pas de chance\n$/);
});

test('le serveur survit à la fermeture du tuyau où il écrit', async (t) => {
  const maison = await preparerMaison(t);
  const serveur = await lancer(t, maison);
  serveur.processus.stdout.destroy();
  serveur.processus.stderr.destroy();
  // Le dossier caché disparu, chaque écriture du carnet échoue et se dit : dans le tuyau fermé.
  rmSync(maison.cache, { recursive: true });
  const fin = unEvenement(serveur.processus, 'exit');
  serveur.processus.kill('SIGTERM');
  assert.equal(await fin, 0);
});
