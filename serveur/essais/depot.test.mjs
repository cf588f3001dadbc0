import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { Navigateur, PageVue, sansNavigateur } from './navigateur.mjs';

const APPLICATION = 'window.keltroveApp = Object.freeze({ depotChemins: true });';
const CHOISI = 'document.querySelector(".onglet.choisi").dataset.terminal';
let navigateur;

before(async () => sansNavigateur || (navigateur = await Navigateur.lancer()));
after(() => navigateur?.fermer());

test('un dépôt s’écrit cité dans le terminal visé, sans le valider', { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur, { avant: APPLICATION });
  const { x, y } = await page.centre('.panneau:not([hidden])');
  await page.evaluer(`keltroveSurvolChemins(${x}, ${y})`);
  assert.equal(await page.evaluer('document.querySelectorAll(".panneau.vise, .onglet.vise").length'), 2);
  assert.match(await page.evaluer('getComputedStyle(document.querySelector(".panneau.vise"), "::after").content'), /Déposer ici/);
  await page.evaluer('keltroveSurvolChemins(null, null)');
  assert.equal(await page.evaluer('document.querySelectorAll(".vise").length'), 0);

  await page.evaluer(`document.body.focus(), keltroveDeposerChemins(["/tmp/l'été", "/tmp/a\\rb", "relatif"], ${x}, ${y})`);
  await page.attendreLeTexte(String.raw`/\$ '\/tmp\/l'\\''été' '\/tmp\/a'\$'\\x0d''b' *$/m`);
  assert.equal(await page.evaluer('document.activeElement.className'), 'xterm-helper-textarea');
  await page.ecrire('| cat; echo valide');
  await page.attendreLeTexte('/ \\| cat; echo valide/');
  assert.deepEqual(page.fautes, []);
});

test('sur un onglet, le dépôt va à son terminal ; ailleurs, au terminal choisi', { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur, { avant: APPLICATION });
  await page.cliquer('.nouveau');
  await page.attendre('document.querySelectorAll(".onglet").length === 2 && document.querySelector(".onglet:last-child.choisi")');
  const [premier, second] = await page.evaluer('[...document.querySelectorAll(".onglet")].map((o) => o.dataset.terminal)');
  const { x, y } = await page.centre(`.onglet[data-terminal="${premier}"]`);
  await page.evaluer(`keltroveSurvolChemins(${x}, ${y})`);
  assert.equal(await page.evaluer('document.querySelector(".onglet.vise").dataset.terminal'), premier);
  await page.evaluer(`keltroveDeposerChemins(["/un deux"], ${x}, ${y})`);
  assert.equal(await page.evaluer(CHOISI), premier);
  await page.attendreLeTexte(String.raw`/\$ '\/un deux' *$/m`);
  assert.equal(await page.evaluer('document.querySelectorAll(".vise").length'), 0);

  await page.evaluer(`document.querySelector('[data-terminal="${second}"] .choisir').click()`);
  await page.evaluer('keltroveDeposerChemins(["/ailleurs"], 990, 5)');
  assert.equal(await page.evaluer(CHOISI), second);
  await page.attendreLeTexte(String.raw`/\$ \/ailleurs *$/m`);
  assert.deepEqual(page.fautes, []);
});

test('dans un simple navigateur, la page n’offre rien à l’application', { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur);
  assert.equal(await page.evaluer('typeof keltroveSurvolChemins + typeof keltroveDeposerChemins'), 'undefinedundefined');
});
