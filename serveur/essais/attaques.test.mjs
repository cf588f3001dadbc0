import assert from 'node:assert/strict';
import { existsSync, readFileSync } from 'node:fs';
import { connect } from 'node:net';
import { after, before, test } from 'node:test';
import WebSocket from 'ws';
import { jetonJuste } from '../lib/acces.mjs';
import { Navigateur, PageVue, sansNavigateur } from './navigateur.mjs';
import { demander, lancer, preparerMaison, unEvenement } from './outils.mjs';

let navigateur;

before(async () => sansNavigateur || (navigateur = await Navigateur.lancer()));
after(() => navigateur?.fermer());

async function lancerUneCible(t) {
  const maison = await preparerMaison(t);
  const { port } = await lancer(t, maison);
  return { port, maison, jeton: readFileSync(maison.cheminJeton, 'utf8').trim() };
}

// Tout ce que la prise reçoit, et comment elle finit.
async function essayerUnePrise(t, port, entetes, premier) {
  const { origin, ...headers } = entetes;
  const socket = new WebSocket(`ws://127.0.0.1:${port}/terminaux`, { origin, headers });
  t.after(() => socket.terminate());
  const recus = [];
  socket.on('message', (donnees) => recus.push(String(donnees)));
  socket.on('error', () => {});
  const refus = new Promise((suite) => socket.once('unexpected-response', (_, reponse) => suite(reponse.resume().statusCode)));
  const ouverte = await Promise.race([refus, unEvenement(socket, 'open').then(() => true)]);
  if (ouverte !== true) return { refus: ouverte, recus };
  if (premier !== undefined) socket.send(premier);
  return { fin: await new Promise((suite) => socket.once('close', suite)), recus };
}

test('le serveur n’écoute que sur les deux adresses de localhost', { skip: !existsSync('/proc/net/tcp') && 'seul Linux le dit' }, async (t) => {
  const { port } = await lancerUneCible(t);
  const hexa = port.toString(16).toUpperCase().padStart(4, '0');
  const ecoutes = ['/proc/net/tcp', '/proc/net/tcp6'].filter(existsSync).flatMap((chemin) => readFileSync(chemin, 'utf8').split('\n'))
    .map((ligne) => ligne.trim().split(/\s+/)).filter(([, local, , etat]) => etat === '0A' && local.endsWith(`:${hexa}`));
  assert.deepEqual(ecoutes.map(([, local]) => local), [`0100007F:${hexa}`, `${'0'.repeat(24)}01000000:${hexa}`]);
});

test('un nom étranger ramené sur cette machine n’obtient rien, surtout pas le jeton', async (t) => {
  const { port, jeton } = await lancerUneCible(t);
  for (const host of [`piege.test:${port}`, 'piege.test', `localhost.piege.test:${port}`, `127.0.0.1.nip.test:${port}`, `127.0.0.2:${port}`, `localhost:${port}@piege.test`]) {
    for (const chemin of ['/', '/page.js', '/api/sante']) {
      const { statut, corps } = await demander(port, chemin, { entetes: { host, 'x-keltrove-jeton': jeton } });
      assert.ok(statut === 403 || statut === 400, `${host} ${chemin} ${statut}`);
      assert.ok(!corps.includes(jeton));
    }
    const prise = await essayerUnePrise(t, port, { host, origin: `http://${host}` });
    assert.ok([400, 403].includes(prise.refus), host);
  }
  for (const demande of ['GET / HTTP/1.0\r\n\r\n', 'GET / HTTP/1.1\r\nHost:\r\nConnection: close\r\n\r\n', `GET http://piege.test/ HTTP/1.1\r\nHost: piege.test\r\nConnection: close\r\n\r\n`]) {
    const prise = connect(port, '127.0.0.1').setEncoding('utf8');
    prise.write(demande);
    const recu = (await prise.toArray()).join('');
    assert.match(recu, /^HTTP\/1\.1 40[03] /, demande);
    assert.ok(!recu.includes(jeton));
  }
});

test('une page d’un autre site n’obtient rien, même du bon nom', async (t) => {
  const { port, jeton } = await lancerUneCible(t);
  const bonjour = JSON.stringify({ type: 'bonjour', jeton });
  for (const origin of ['http://site.test', `http://site.test:${port}`, `https://localhost:${port}`, 'null', `http://localhost:${port}.site.test`, `http://localhost:${port + 1}`, 'file://', '']) {
    const { statut, corps } = await demander(port, '/', { entetes: { origin } });
    assert.equal(statut, 403, origin);
    assert.ok(!corps.includes(jeton));
    assert.deepEqual(await essayerUnePrise(t, port, { origin }, bonjour), { refus: 403, recus: [] }, origin);
  }
});

test('ce qu’un navigateur dit venir d’un autre site est refusé, même sans origine', async (t) => {
  const { port, jeton } = await lancerUneCible(t);
  const origin = `http://localhost:${port}`;
  for (const chemin of ['/', '/page.js', '/api/sante']) {
    const entetes = { 'sec-fetch-site': 'cross-site', 'x-keltrove-jeton': jeton };
    const { statut, corps } = await demander(port, chemin, { entetes });
    assert.equal(statut, 403, chemin);
    assert.ok(!corps.includes(jeton));
  }
  assert.deepEqual(await essayerUnePrise(t, port, { origin, 'sec-fetch-site': 'cross-site' }), { refus: 403, recus: [] });
  // Une adresse tapée, un favori, la page elle-même.
  for (const provenance of ['none', 'same-origin', 'same-site']) {
    assert.equal((await demander(port, '/', { entetes: { 'sec-fetch-site': provenance } })).statut, 200, provenance);
  }
});

test('sans le bon jeton en premier, la liaison ne dit rien et se coupe', async (t) => {
  const { port, jeton } = await lancerUneCible(t);
  const origin = `http://localhost:${port}`;
  const bonjour = (autre) => JSON.stringify({ type: 'bonjour', jeton: autre });
  const premiers = [
    bonjour(''), bonjour(jeton.slice(1)), bonjour(`${jeton} `), bonjour(jeton.toUpperCase().replace(/^./, 'X')), bonjour([jeton]), bonjour({}),
    bonjour(null), '{"type":"bonjour"}', '{"type":"ouvrir"}', 'charabia', '', 'null', `{"type":"saisie","jeton":"${jeton}"}`,
  ];
  // Le dernier se tait : sa patience est comptée aussi.
  for (const resultat of await Promise.all([...premiers, undefined].map((premier) => essayerUnePrise(t, port, { origin }, premier)))) {
    assert.deepEqual(resultat, { fin: 4401, recus: [] });
  }
  const enorme = await essayerUnePrise(t, port, { origin }, 'x'.repeat(2 * 1024 * 1024));
  assert.deepEqual(enorme, { fin: 1009, recus: [] });
  assert.equal((await demander(port, '/')).statut, 200);
});

test('le jeton se compare sans égard à sa forme', () => {
  assert.ok(jetonJuste('abc', 'abc'));
  for (const faux of ['ab', 'abcd', 'abd', '', undefined, null, 3, ['abc'], Buffer.from('abc')]) assert.equal(jetonJuste(faux, 'abc'), false);
});

test('aucun chemin demandé ne sort de la page', async (t) => {
  const { port, jeton } = await lancerUneCible(t);
  const chemins = ['/../lib/acces.mjs', '/%2e%2e/serveur.mjs', '/..%2fpackage.json', '//etc/passwd', '/index.html', '/xterm/../page.js', '/page.js/', '/PAGE.JS', '/page.js%00', '/__proto__', '/constructor'];
  for (const chemin of chemins) {
    assert.equal((await demander(port, chemin)).statut, 401, chemin);
    assert.equal((await demander(port, chemin, { entetes: { 'x-keltrove-jeton': jeton } })).statut, 404, chemin);
  }
});

test('la politique de la page est stricte, et toute réponse se garde chez soi', async (t) => {
  const { port } = await lancerUneCible(t);
  const { entetes } = await demander(port, '/', { entetes: { host: `localhost:${port}` } });
  assert.equal(entetes['content-security-policy'], [
    "default-src 'none'", "script-src 'self' 'wasm-unsafe-eval'", "style-src 'self' 'unsafe-inline'", `connect-src 'self' ws://localhost:${port}`,
    "img-src 'self' data:", "font-src 'self' data:", "base-uri 'none'", "form-action 'none'", "frame-ancestors 'none'",
  ].join('; '));
  assert.equal(entetes['cross-origin-opener-policy'], 'same-origin');
  // La fenêtre de l’application n’a pas d’ouvreur ; aucun site ne peut prendre son nom.
  const chezElle = await demander(port, '/', { entetes: { host: `localhost:${port}`, 'user-agent': 'Mozilla/5.0 Keltrove/1' } });
  assert.equal(chezElle.entetes['cross-origin-opener-policy'], undefined);
  assert.equal(entetes['x-frame-options'], 'DENY');
  assert.match(entetes['permissions-policy'], /camera=\(\), .*microphone=\(\).*usb=\(\)/);
  for (const chemin of ['/', '/page.js', '/ailleurs']) {
    const { entetes: siens } = await demander(port, chemin);
    assert.equal(siens['x-content-type-options'], 'nosniff');
    assert.equal(siens['cross-origin-resource-policy'], 'same-origin');
    assert.equal(siens['referrer-policy'], 'no-referrer');
    assert.equal(siens['access-control-allow-origin'], undefined);
  }
});

test('rien de ce qu’un terminal affiche ou annonce ne devient du code', { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur);
  const balise = '<img src=x onerror=window.pris=1><script>window.pris=2</script>';
  await page.ecrire(String.raw`printf '%s\n\e]0;%s\a\e]8;;javascript:window.pris=3\e\\x\e]8;;\e\\\e]7;file:///%s\a' '${balise}' '${balise}' '${balise}'; mkdir '${balise.replaceAll('/', '')}'; cd *img*`);
  await page.touche('Entrée');
  await page.attendre('document.querySelector(".onglet .choisir").textContent.startsWith("<img src=x")');
  await page.touche('Ctrl+Maj+O');
  await page.touche('F2');
  await page.ecrire(balise);
  await page.touche('Entrée');
  await page.recharger();
  assert.equal(await page.evaluer('document.querySelectorAll("body img, body script").length'), 0);
  assert.equal(await page.evaluer('window.pris'), undefined);
  // Même une balise qui s’y glisserait resterait lettre morte.
  await page.evaluer(`{ const s = document.createElement('script'); s.textContent = 'window.pris = 4'; document.body.append(s);
    document.body.insertAdjacentHTML('beforeend', '<img src=x onerror="window.pris = 5">'); }`);
  await page.evaluer('new Promise((suite) => setTimeout(suite, 100))');
  assert.equal(await page.evaluer('window.pris'), undefined);
});
