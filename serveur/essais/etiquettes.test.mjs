import assert from 'node:assert/strict';
import { writeFileSync } from 'node:fs';
import { homedir, hostname } from 'node:os';
import { after, before, test } from 'node:test';
import { etiqueter } from '../lib/etiquettes.mjs';
import { Navigateur, PageVue, sansNavigateur } from './navigateur.mjs';
import { preparerMaison } from './outils.mjs';

let navigateur;
before(async () => sansNavigateur || (navigateur = await Navigateur.lancer()));
after(() => navigateur?.fermer());

test('un onglet dit le titre de son programme, sinon le programme, sinon le dossier', () => {
  const ici = hostname().split('.')[0];
  const cas = [
    [{ titre: '', dossier: '/srv/projets/jardin' }, 'jardin'],
    [{ titre: '', dossier: '/' }, '/'],
    [{ titre: '', dossier: homedir() }, '~'],
    [{ titre: '', dossier: '/tmp', programme: 'htop' }, 'htop'],
    [{ titre: `ana@${ici}: ~/jardin`, dossier: '/home/ana/jardin' }, 'jardin'],
    [{ titre: `ana@${ici}: ~/jardin`, dossier: '/home/ana/jardin', programme: 'make' }, 'make'],
    [{ titre: 'ana@autre-machine: ~/serre', dossier: '/home/ana', programme: 'ssh' }, 'autre-machine : serre'],
    [{ titre: 'plan.md - VIM', dossier: '/tmp', programme: 'vim' }, 'plan.md - VIM'],
  ];
  for (const [description, voulue] of cas) assert.equal(etiqueter({ nom: 'Terminal 7', ...description }), voulue);
  assert.equal(etiqueter({ nom: 'Semis', titre: 'plan.md - VIM', programme: 'vim', dossier: '/tmp' }), 'Semis');
});

async function ouvrirDesOnglets(t, nombre) {
  const maison = await preparerMaison(t);
  const terminaux = Array.from({ length: nombre }, (_, rang) => ({ id: `t${rang}`, nom: `Terminal ${rang + 1}`, dossier: '/tmp', lignes: [] }));
  writeFileSync(maison.cheminCarnet, JSON.stringify({ terminaux }));
  const page = await PageVue.ouvrir(t, navigateur, { maison });
  await page.attendre(`document.querySelectorAll('.onglet').length === ${nombre}`);
  return page;
}
const VISIBLE = `(() => { const [r, o] = ['.onglets', '.onglet.choisi'].map((s) => document.querySelector(s).getBoundingClientRect());
  return o.left >= r.left && o.right <= r.right; })()`;

test('vingt onglets se distinguent tous, et celui qui travaille le dit', { skip: sansNavigateur }, async (t) => {
  const page = await ouvrirDesOnglets(t, 20);
  const lus = 'JSON.stringify([...document.querySelectorAll(".choisir")].map((b) => [b.dataset.numero, b.textContent, getComputedStyle(b, "::before").content]))';
  await page.attendre(`${lus} === ${JSON.stringify(JSON.stringify(Array.from({ length: 20 }, (_, rang) => [`${rang + 1}`, 'tmp', `"${rang + 1}"`])))}`);
  await page.ecrire('cat');
  await page.touche('Entrée');
  await page.attendre('document.querySelector(".onglet.choisi .choisir").textContent === "cat"');
  assert.match(await page.evaluer('document.querySelector(".onglet.choisi .choisir").ariaLabel'), /^Terminal \d+ : cat$/);
  await page.touche('Ctrl+d');
  await page.attendre('document.querySelector(".onglet.choisi .choisir").textContent === "tmp"');
  assert.deepEqual(page.fautes, []);
});

test('cinquante onglets : la rangée défile à la molette, et garde le choisi sous les yeux', { skip: sansNavigateur }, async (t) => {
  const page = await ouvrirDesOnglets(t, 50);
  assert.ok(await page.evaluer(`document.querySelector('.onglet').offsetWidth >= 100 && ${VISIBLE}`));
  const { x, y } = await page.centre('.onglets');
  await page.demander('Input.dispatchMouseEvent', { type: 'mouseWheel', x, y, deltaX: 0, deltaY: 300 });
  await page.attendre("document.querySelector('.onglets').scrollLeft === 300");
  assert.deepEqual(await page.evaluer("[...document.querySelector('.onglets').classList].sort()"), ['apres', 'avant', 'onglets']);
  await page.evaluer('keltrovePont.ouvrir("t49")');
  await page.attendre(VISIBLE);
  await page.demander('Emulation.setDeviceMetricsOverride', { width: 500, height: 400, deviceScaleFactor: 1, mobile: false });
  await page.attendre(`innerWidth === 500 && ${VISIBLE}`);
  await page.touche('Ctrl+Maj+PageSuivante');
  await page.attendre(`document.querySelector('.onglet.choisi').dataset.terminal === 't0' && ${VISIBLE}`);
  assert.deepEqual(page.fautes, []);
});
