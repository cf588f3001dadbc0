import assert from 'node:assert/strict';
import { existsSync, readFileSync } from 'node:fs';
import { after, before, test } from 'node:test';
import { Navigateur, PageVue, sansNavigateur } from './navigateur.mjs';
import { attendreLeFichier, borner, lancer, Page, preparerMaison } from './outils.mjs';

const MO = 1024 * 1024;
let navigateur;

before(async () => sansNavigateur || (navigateur = await Navigateur.lancer()));
after(() => navigateur?.fermer());

const memoire = ({ processus }) => Number(/VmRSS:\s+(\d+)/.exec(readFileSync(`/proc/${processus.pid}/status`, 'utf8'))[1]) * 1024;

test('une page gelée ne fait pas grossir le serveur, ni attendre celle qui suit', { skip: !existsSync('/proc/self/status') && 'seul Linux dit la mémoire' }, async (t) => {
  const maison = await preparerMaison(t);
  const serveur = await lancer(t, maison);
  const jeton = readFileSync(maison.cheminJeton, 'utf8').trim();
  const [vive, gelee] = [await Page.ouvrir(t, serveur.port, jeton), await Page.ouvrir(t, serveur.port, jeton)];
  await Promise.all([vive, gelee].map((page) => page.attendre(() => page.derniers.has('reprise'), 'la reprise')));
  const [{ id }] = vive.terminaux;
  gelee.geler();
  vive.compter = true;
  let plusHaut = 0;
  const veille = setInterval(() => (plusHaut = Math.max(plusHaut, memoire(serveur))), 50);
  const depart = memoire(serveur);
  vive.envoyer({ type: 'saisie', id, texte: 'head -c 150000000 /dev/zero | tr "\\0" x; echo; echo fin-$((1 + 1))\r' });
  await vive.attendreLaFinDuFlot(() => vive.fins.get(id)?.includes('fin-2'), 'la fin').finally(() => clearInterval(veille));
  assert.ok(vive.recus > 150_000_000);
  t.diagnostic(`${Math.round((plusHaut - depart) / MO)} Mo de plus au plus fort`);
  assert.ok(plusHaut - depart < 250 * MO, `${Math.round((plusHaut - depart) / MO)} Mo de plus`);
});

test('une inondation passée, le serveur n’en garde pas la mémoire', { skip: !existsSync('/proc/self/status') && 'seul Linux dit la mémoire' }, async (t) => {
  const maison = await preparerMaison(t);
  const serveur = await lancer(t, maison);
  const page = await Page.ouvrir(t, serveur.port, readFileSync(maison.cheminJeton, 'utf8').trim());
  await page.attendre(() => page.derniers.has('reprise'), 'la reprise');
  const [{ id }] = page.terminaux;
  page.compter = true;
  page.lignesGardees = 11_000;
  const imprimer = async (nombre) => {
    page.envoyer({ type: 'saisie', id, texte: `seq ${nombre}; echo fin-$((${nombre} + 1))\r` });
    await page.attendre(() => page.fins.get(id)?.includes(`fin-${nombre + 1}`), 'la fin');
  };
  // D’abord ce qu’un terminal garde toujours, et ce que le serveur charge pour relire un texte qui bouge.
  await imprimer(100_000);
  page.envoyer({ type: 'saisie', id, texte: 'printf "\\e[3Cmar%s\\n" que\r' });
  await attendreLeFichier(maison.cheminCarnet, (texte) => texte.includes('"   marque"'));
  const avant = memoire(serveur);
  await imprimer(1_000_000);
  const gardes = () => Math.round((memoire(serveur) - avant) / MO);
  t.diagnostic(`${gardes()} Mo de plus, la dernière ligne à peine arrivée`);
  // Node ne la rend qu’à la première accalmie.
  let veille;
  const rendue = new Promise((suite) => (veille = setInterval(() => gardes() < 12 && suite(), 50)));
  await borner(rendue, () => `${gardes()} Mo de plus`).finally(() => clearInterval(veille));
});

test('sous un flot sans fin, la page répond aux touches, ici et dans les autres terminaux', { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur);
  await page.ecrire('yes flot');
  await page.touche('Entrée');
  await page.attendreLeTexte('/^flot/m');
  await page.touche('Ctrl+Maj+T');
  await page.attendre('document.querySelector(".onglet + .onglet.choisi")');
  await page.attendreLeTexte('/\\$ /');
  await page.ecrire('echo libre-$((1 + 1))');
  await page.touche('Entrée');
  await page.attendreLeTexte('/libre-2/');
  await page.touche('Ctrl+Maj+PagePrécédente');
  await page.touche('Ctrl+c');
  await page.attendreLeTexte('/\\^C[^]*\\$ /');
  assert.deepEqual(page.fautes, []);
});

test('vingt terminaux bavards laissent répondre celui qu’on regarde', { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur);
  for (let nombre = 2; nombre <= 21; nombre += 1) {
    await page.ecrire('yes');
    await page.touche('Entrée');
    await page.touche('Ctrl+Maj+T');
    await page.attendre(`document.querySelectorAll('.onglet').length === ${nombre}`);
    await page.attendreLeTexte('/\\$ /');
  }
  const depart = performance.now();
  for (let i = 0; i < 20; i += 1) {
    await page.ecrire('x');
    await page.attendreLeTexte(`/\\$ x{${i + 1}}/`);
  }
  t.diagnostic(`${Math.round((performance.now() - depart) / 20)} ms par touche`);
  await page.touche('Ctrl+Maj+PagePrécédente');
  await page.touche('Ctrl+c');
  await page.attendreLeTexte('/\\^C[^]*\\$ /');
  assert.deepEqual(page.fautes, []);
});
