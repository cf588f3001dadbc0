import assert from 'node:assert/strict';
import { readFileSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { lireLesDernieresLignes } from '../lib/dernieresLignes.mjs';
import { Tampon } from '../lib/Tampon.mjs';
import { Navigateur, PageVue, sansNavigateur } from './navigateur.mjs';
import { arreter, lancer, lancerAvecUnePage, preparerMaison } from './outils.mjs';

const ENORME = 2 ** 31 - 1;
const FINALES = [...'ILMSTZb'];
const suite = (nombre) => FINALES.flatMap((final) => [`a\x1b[${nombre}${final}`, `a\x9b${nombre}${final}`, `a\x1b[${nombre};1${final}`]).join('');
// Chacune de ces séquences suffisait à figer la page pour de bon ; les mêmes, modestes, donnent la mesure de la machine.
const [HOSTILE, MODESTE] = [ENORME, 20].map(suite);
const RAPPORT_MAXIMUM = 20;
let navigateur;

before(async () => sansNavigateur || (navigateur = await Navigateur.lancer()));
after(() => navigateur?.fermer());

test('treize octets ne coûtent guère plus que trois à qui les relit', async (t) => {
  const relire = async (texte) => {
    const depart = performance.now();
    await lireLesDernieresLignes(texte.repeat(20), { colonnes: 80, lignes: 24 });
    return performance.now() - depart;
  };
  await relire(MODESTE);
  const [modeste, hostile] = [await relire(MODESTE), await relire(HOSTILE)];
  t.diagnostic(`${Math.round(hostile)} ms, contre ${Math.round(modeste)}`);
  assert.ok(hostile < RAPPORT_MAXIMUM * modeste, `${hostile} ms, contre ${modeste}`);
});

test('les petites répétitions, elles, gardent leur effet', async () => {
  const lire = (texte) => lireLesDernieresLignes(texte, { colonnes: 80, lignes: 24 });
  assert.deepEqual(await lire('ab\x1b[3bc'), ['abbbbc']);
  assert.deepEqual(await lire('\x1b[2Ix'), [`${' '.repeat(16)}x`]);
  assert.deepEqual(await lire('un\r\ndeux\r\ntrois\x1b[H\x1b[1M'), ['deux', 'trois']);
  assert.deepEqual(await lire('un\r\ndeux\x1b[H\x1b[2L'), ['', '', 'un', 'deux']);
  assert.deepEqual(await lire('un\r\ndeux\x1b[1S'), ['deux']);
});

test('une suite hostile ne fige ni le serveur, ni la page, ni le rechargement, ni le redémarrage', { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur);
  writeFileSync(join(page.maison.maison, 'hostile'), `${HOSTILE.repeat(20)}\x1b[2J\x1b[H`);
  const chronometrer = async (quoi, faire) => {
    const depart = performance.now();
    await faire();
    t.diagnostic(`${quoi} : ${Math.round(performance.now() - depart)} ms`);
  };
  await chronometrer('affichée', async () => {
    await page.ecrire('cat hostile; echo apres-$((1 + 1))');
    await page.touche('Entrée');
    await page.attendreLeTexte('/apres-2/');
  });
  await chronometrer('rechargée', async () => {
    await page.recharger();
    await page.attendreLeTexte('/apres-2/');
  });
  const relire = (texte) => page.evaluer(`(async () => { const depart = performance.now(); const { vues } = await import('/terminaux.js');
    const [vue] = vues.values(); await new Promise((suite) => vue.terminal.write(${JSON.stringify(texte.repeat(20))}, suite));
    return performance.now() - depart; })()`);
  await relire(MODESTE);
  const [modeste, hostile] = [await relire(MODESTE), await relire(HOSTILE)];
  t.diagnostic(`relue seule : ${Math.round(hostile)} ms, contre ${Math.round(modeste)}`);
  assert.ok(hostile < RAPPORT_MAXIMUM * modeste, `${hostile} ms, contre ${modeste}`);
  await arreter(page.serveur);
  await chronometrer('relancée', () => lancer(t, page.maison));
  await page.attendreLeTexte('/fin de la session précédente/');
  assert.deepEqual(page.fautes, []);
});

test('des modes sans fin n’occupent ni la mémoire ni la reprise', async (t) => {
  const tampon = new Tampon();
  tampon.ajouter('\x1b[?1049h\x1b[?2004h');
  for (let numero = 0; numero < 400_000; numero += 1) tampon.ajouter(`\x1b[?${100_000 + numero}h`);
  assert.ok(tampon.rejouer().startsWith('\x1b[?1049h\x1b[?2004h\x1b[?'));
  assert.ok(tampon.rejouer().length < 560_000);

  const maison = await preparerMaison(t);
  const { serveur, page } = await lancerAvecUnePage(t, maison);
  const [{ id }] = page.terminaux;
  page.compter = true;
  const memoire = () => Number(/VmRSS:\s+(\d+)/.exec(readFileSync(`/proc/${serveur.processus.pid}/status`, 'utf8'))[1]) / 1024;
  const depart = memoire();
  page.envoyer({ type: 'saisie', id, texte: "seq 1 3000000 | sed 's/.*/\\x1b[?&h/' | tr -d '\\n'; echo fin-$((1 + 1))\r" });
  await page.attendreLaFinDuFlot(() => page.fins.get(id)?.includes('fin-2'), 'la fin');
  t.diagnostic(`${Math.round(memoire() - depart)} Mo de plus`);
  assert.ok(memoire() - depart < 120, `${Math.round(memoire() - depart)} Mo de plus`);
});
