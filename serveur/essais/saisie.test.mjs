import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { Saisie } from '../lib/Saisie.mjs';
import { arreter, attendreLeFichier, lancerAvecUnePage, Page, preparerMaison } from './outils.mjs';

const MIO = 1024 * 1024;
const SOURD = 'stty raw -echo; echo sourd-$((1 + 1)); exec sleep 600\r';

async function ouvrirEncore(page) {
  page.derniers.delete('ouvert');
  page.envoyer({ type: 'ouvrir' });
  await page.attendre(() => page.derniers.has('ouvert'), 'un terminal de plus');
  return page.derniers.get('ouvert').id;
}

test('ce qu’un programme ne lit pas ne gêne ni ses voisins, ni la page, ni l’arrêt', async (t) => {
  const maison = await preparerMaison(t);
  const { serveur, page } = await lancerAvecUnePage(t, maison);
  const [{ id: sourd }] = page.terminaux;
  const voisin = await ouvrirEncore(page);
  page.envoyer({ type: 'renommer', id: voisin, nom: 'Gardé' });
  page.envoyer({ type: 'saisie', id: sourd, texte: SOURD });
  await page.attendreLeTexte(sourd, /sourd-2/);
  page.envoyer({ type: 'saisie', id: sourd, texte: 'x'.repeat(100_000) });
  page.envoyer({ type: 'saisie', id: voisin, texte: 'echo libre-$((2 + 2))\r' });
  await page.attendreLeTexte(voisin, /libre-4/);
  const avant = processeurDe(serveur);
  await new Promise((suite) => setTimeout(suite, 1000));
  assert.ok(processeurDe(serveur) - avant < 50, 'le serveur attend sans tourner à vide');
  assert.deepEqual(await arreter(serveur), { code: 0, signal: null });
  assert.deepEqual(maison.lireLeCarnet().map(({ nom }) => nom), ['Terminal 1', 'Gardé']);
});

test('trop de saisie sans lecteur est abandonnée d’un bloc, et la page le sait', async (t) => {
  const { page } = await lancerAvecUnePage(t, await preparerMaison(t));
  const [{ id }] = page.terminaux;
  page.envoyer({ type: 'saisie', id, texte: 'stty raw -echo; echo sourd-$((1 + 1)); sleep 3; head -c 3 | od -c; stty sane; echo repris-$((1 + 1))\r' });
  await page.attendreLeTexte(id, /sourd-2/);
  for (let i = 0; i < 10; i += 1) page.envoyer({ type: 'saisie', id, texte: 'x'.repeat(MIO / 2) });
  await page.attendre(() => page.derniers.get('sourd')?.id === id, 'l’aveu');
  // La suite lui parvient : ni blocage, ni reste.
  await page.attendreLeTexte(id, /repris-2/);
});

test('cinq mégaoctets collés arrivent entiers, et le voisin répond pendant ce temps', async (t) => {
  const maison = await preparerMaison(t);
  const { page } = await lancerAvecUnePage(t, maison);
  const [{ id }] = page.terminaux;
  const voisin = await ouvrirEncore(page);
  page.envoyer({ type: 'saisie', id, texte: 'stty -echo; echo pret-$((1 + 1)); cat > recu; echo lu-$((1 + 1))\r' });
  await page.attendreLeTexte(id, /pret-2/);
  page.envoyer({ type: 'saisie', id: voisin, texte: 'stty -echo; echo pret-$((1 + 1)); cat\r' });
  await page.attendreLeTexte(voisin, /pret-2/);
  const ligne = `${'é'.repeat(500)}\n`;
  const total = Math.ceil((5 * MIO) / Buffer.byteLength(ligne));
  const envoi = envoyerAuRythme(page, id, ligne.repeat(total));
  const durees = [];
  for (let i = 0; i < 50; i += 1) {
    const depart = performance.now();
    page.envoyer({ type: 'saisie', id: voisin, texte: `touche-${i}\r` });
    await page.attendreLeTexte(voisin, new RegExp(`touche-${i}\\r`));
    durees.push(performance.now() - depart);
  }
  await envoi;
  page.envoyer({ type: 'saisie', id, texte: '\u0004' });
  await page.attendreLeTexte(id, /lu-2/);
  assert.equal(readFileSync(join(maison.maison, 'recu'), 'utf8'), ligne.repeat(total));
  t.diagnostic(`écho du voisin : ${Math.round(durees.sort((a, b) => a - b)[25])} ms`);
});

// Comme la page : pas plus d’un mégaoctet en route.
async function envoyerAuRythme(page, id, texte) {
  let enRoute = 0;
  for (let debut = 0; debut < texte.length; debut += 65_536) {
    const morceau = texte.slice(debut, debut + 65_536);
    page.envoyer({ type: 'saisie', id, texte: morceau });
    enRoute += morceau.length;
    const lus = () => page.lus.get(id) ?? 0;
    await page.attendre(() => enRoute - lus() < MIO, 'le programme lit');
  }
}

test('de deux pages, une seule répond aux questions d’un programme : celle où l’on agit', async (t) => {
  const maison = await preparerMaison(t);
  const { serveur, page } = await lancerAvecUnePage(t, maison);
  const seconde = await Page.ouvrir(t, serveur.port, readFileSync(maison.cheminJeton, 'utf8').trim());
  const [{ id }] = page.terminaux;
  await seconde.attendre(() => seconde.terminaux.length > 0, 'la liste');
  page.envoyer({ type: 'saisie', id, texte: 'stty raw -echo; echo pret-$((1 + 1)); dd bs=1 count=7 2>/dev/null > recu; stty sane\r' });
  await page.attendreLeTexte(id, /pret-2/);
  seconde.envoyer({ type: 'reponse', id, texte: 'BBB' });
  page.envoyer({ type: 'reponse', id, texte: 'AAA' });
  await page.attendre(() => (page.lus.get(id) ?? 0) > 3, 'la réponse lue');
  seconde.envoyer({ type: 'saisie', id, texte: 's' });
  await seconde.attendre(() => (seconde.lus.get(id) ?? 0) === 1, 'la frappe lue');
  page.envoyer({ type: 'reponse', id, texte: 'CCC' });
  seconde.envoyer({ type: 'reponse', id, texte: 'BBB' });
  await attendreLeFichier(join(maison.maison, 'recu'), (texte) => texte.length === 7);
  assert.equal(readFileSync(join(maison.maison, 'recu'), 'utf8'), 'AAAsBBB');
});

test('la saisie attend sans se presser, reprend où elle en était, et ne garde jamais trop', async () => {
  const pris = [];
  let place = 5;
  const saisie = new Saisie((octets) => {
    if (place === 0) throw Object.assign(new Error('plein'), { code: 'EAGAIN' });
    const nombre = Math.min(place, octets.length);
    pris.push(octets.subarray(0, nombre).toString());
    place -= nombre;
    return nombre;
  });
  const ecrits = [];
  assert.ok(saisie.ajouter('bonjour', () => ecrits.push('bonjour')));
  assert.ok(saisie.ajouter(' toi', () => ecrits.push('toi')));
  assert.deepEqual([pris.join(''), ecrits], ['bonjo', []]);
  assert.equal(saisie.ajouter('x'.repeat(4 * MIO)), false);
  place = 4;
  await new Promise((suite) => setTimeout(suite, 30));
  assert.deepEqual([pris.join(''), ecrits], ['bonjour t', ['bonjour']]);
  saisie.vider();
  place = 100;
  await new Promise((suite) => setTimeout(suite, 120));
  assert.equal(pris.join(''), 'bonjour t');
  assert.ok(saisie.ajouter('!'));
  assert.equal(pris.at(-1), '!');
});

// En centièmes de seconde.
function processeurDe({ processus }) {
  const champs = readFileSync(`/proc/${processus.pid}/stat`, 'utf8').split(') ')[1].split(' ');
  return Number(champs[11]) + Number(champs[12]);
}
