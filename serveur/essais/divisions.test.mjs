import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { accorder, estUneDivision, repartir } from '../lib/divisions.mjs';
import { Navigateur, PageVue, sansNavigateur } from './navigateur.mjs';
import { arreter, attendreLeFichier, lancer } from './outils.mjs';

let navigateur;

before(async () => sansNavigateur || (navigateur = await Navigateur.lancer()));
after(() => navigateur?.fermer());

const essai = (phrase, faire) => test(phrase, { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur);
  await faire(page, t);
  assert.deepEqual(page.fautes, []);
});

// « a50 [b50 c50]50 » : en colonnes ; entre crochets, l’un sur l’autre.
const dessiner = (noeud) => (typeof noeud === 'string' ? noeud : noeud.enfants.map((enfant, rang) => {
  const part = Math.round(noeud.parts[rang] * 100);
  return typeof enfant === 'string' ? enfant + part : `${enfant.sens === 'lignes' ? '[' : '('}${dessiner(enfant)}${enfant.sens === 'lignes' ? ']' : ')'}${part}`;
}).join(' '));

test('un terminal de plus prend la moitié du sien, et des parts égales le restent', () => {
  let arbre = accorder(undefined, ['a', 'b']);
  assert.equal(dessiner(arbre), 'a50 b50');
  assert.equal(dessiner(accorder(arbre, ['a', 'n', 'b'])), 'a33 n33 b33');
  arbre = repartir(arbre, [], [3, 1]);
  assert.equal(dessiner(arbre), 'a75 b25');
  assert.equal(dessiner(accorder(arbre, ['n', 'a', 'b'])), 'n38 a38 b25');
  arbre = accorder(arbre, ['a', 'b', 'c'], 'lignes');
  assert.equal(dessiner(arbre), 'a75 [b50 c50]25');
  arbre = accorder(arbre, ['a', 'b', 'c', 'd'], 'colonnes');
  assert.equal(dessiner(arbre), 'a75 [b50 (c50 d50)50]25');
  assert.equal(dessiner(repartir(arbre, [1, 1], [1, 4])), 'a75 [b50 (c20 d80)50]25');
});

test('celui qui part laisse sa place, et un autre ordre garde les places', () => {
  const arbre = accorder(accorder(undefined, ['a', 'b']), ['a', 'b', 'c'], 'lignes');
  assert.equal(dessiner(accorder(arbre, ['a', 'c'])), 'a50 c50');
  assert.equal(dessiner(accorder(arbre, ['b', 'c'])), 'b50 c50');
  assert.equal(accorder(arbre, ['b', 'c']).sens, 'lignes');
  assert.equal(dessiner(accorder(arbre, ['c', 'a', 'b'])), 'c50 [a50 b50]50');
  // En partant, b rend à sa colonne le sens de ce qui l’entoure : elles n’en font plus qu’une.
  const imbrique = accorder(arbre, ['a', 'b', 'c', 'd'], 'colonnes');
  assert.equal(dessiner(accorder(imbrique, ['a', 'c', 'd'])), 'a50 c25 d25');
});

test('ce qui ne se tient pas ne change rien', () => {
  const arbre = accorder(undefined, ['a', 'b']);
  for (const [chemin, parts] of [[[], [1]], [[], [1, -1]], [[], [1, NaN]], [[], ['1', 1]], [[0], [1, 1]], [[7], [1, 1]], [['x'], null]]) {
    assert.deepEqual(repartir(arbre, chemin, parts), arbre);
  }
  assert.ok(estUneDivision(arbre));
  for (const faux of [null, 'a', {}, { ...arbre, sens: 'x' }, { ...arbre, parts: [1] }, { ...arbre, enfants: ['a', 3] }, { ...arbre, enfants: 2 }]) {
    assert.ok(!estUneDivision(faux));
  }
  assert.equal(dessiner(accorder({ ...arbre, enfants: ['a', 'a'] }, ['a', 'b'])), 'a50 b50');
});

const CADRES = '[...document.querySelectorAll(".panneau:not([hidden])")].map((p) => { const r = p.getBoundingClientRect(); return [r.x, r.y, r.width, r.height].map(Math.round); })';
const SEPARATEURS = '[...document.querySelectorAll("[role=separator]")]';
const diviser = async (page, touche) => {
  const nombre = (await page.evaluer(CADRES)).length;
  await page.touche(touche);
  await page.attendre(`${CADRES}.length === ${nombre + 1} && document.activeElement.closest(".panneau.choisi")`);
};
const attendreLesCadres = (page, condition) => page.attendre(`(([a, b, c]) => ${condition})(${CADRES})`);

essai('côte à côte puis l’un au-dessus de l’autre, des bords que l’on déplace, gardés d’une session à l’autre', async (page, t) => {
  await diviser(page, 'Ctrl+Maj+D');
  await diviser(page, 'Ctrl+Maj+E');
  await attendreLesCadres(page, 'a[0] < b[0] && b[0] === c[0] && b[1] < c[1] && a[3] > c[3] && Math.abs(b[3] - c[3]) <= 1');
  // Chacun, du clavier, dit ce qu’il sépare et où il en est.
  assert.deepEqual(await page.evaluer(`${SEPARATEURS}.map((s) => [s.ariaOrientation, s.ariaValueNow, s.tabIndex])`), [['vertical', '50', 0], ['horizontal', '50', 0]]);
  const { x, y } = await page.evaluer(`(() => { const r = ${SEPARATEURS}[0].getBoundingClientRect(); return { x: r.x + 2, y: r.y + 100 }; })()`);
  await page.souris('mousePressed', x, y);
  await page.souris('mouseMoved', x - 100, y);
  // La liste se redit entre-temps : le bord reste où on le tire.
  await page.evaluer('import("/liaison.js").then(({ envoyer }) => envoyer({ type: "renommer", id: document.querySelector(".onglet").dataset.terminal, nom: "redite" }))');
  await page.attendre('document.querySelector(".onglet .choisir").textContent === "redite"');
  await page.souris('mouseReleased', x - 100, y);
  await attendreLesCadres(page, 'Math.abs(b[0] - a[2] - 1) <= 1 && Math.abs(a[2] - 400) < 6');
  // Le terminal n’a pas perdu le clavier.
  assert.equal(await page.evaluer('document.activeElement.className'), 'xterm-helper-textarea');
  await page.evaluer(`${SEPARATEURS}[1].focus()`);
  for (let i = 0; i < 2; i += 1) await page.touche('Haut');
  await attendreLesCadres(page, 'Math.abs(c[3] - b[3] - 96) <= 2');
  assert.ok(Number(await page.evaluer(`${SEPARATEURS}[1].ariaValueNow`)) < 50);
  await page.touche('Échap');
  assert.equal(await page.evaluer('document.activeElement.className'), 'xterm-helper-textarea');
  const cadres = JSON.stringify(await page.evaluer(CADRES));
  await attendreLeFichier(page.maison.cheminCarnet, (texte) => /"parts": \[\s*0\.4/.test(texte));
  await page.recharger();
  await page.attendre(`JSON.stringify(${CADRES}) === ${JSON.stringify(cadres)}`);
  await arreter(page.serveur);
  await lancer(t, page.maison);
  await page.attendreLeTexte('/── fin de la session précédente ──/');
  await page.attendre(`JSON.stringify(${CADRES}) === ${JSON.stringify(cadres)}`);
  // Un double clic rend à chacun la même place.
  await page.cliquer('[role=separator]');
  await page.cliquer('[role=separator]', { clickCount: 2 });
  await attendreLesCadres(page, 'Math.abs(a[2] - b[2]) <= 1');
});

essai('on va d’un panneau à son voisin ; sans voisin, la touche est au programme', async (page) => {
  const choisi = (rang) => page.attendre(`document.querySelectorAll(".panneau:not([hidden])")[${rang}]?.contains(document.activeElement)`);
  // Avant que cat ait le terminal, l’interpréteur prendrait la touche sans la montrer.
  await page.ecrire('echo pret-$((1 + 1)); cat -v');
  await page.touche('Entrée');
  await page.attendreLeTexte('/pret-2/');
  await page.touche('Ctrl+Maj+Gauche');
  await page.attendreLeTexte('/\\^\\[\\[1;6D/');
  await diviser(page, 'Ctrl+Maj+D');
  await diviser(page, 'Ctrl+Maj+E');
  await page.touche('Ctrl+Maj+Haut');
  await choisi(1);
  await page.touche('Ctrl+Maj+Gauche');
  await choisi(0);
  await page.touche('Ctrl+Maj+Bas');
  await page.attendreLeTexte('/\\^\\[\\[1;6B/');
  await page.touche('Ctrl+Maj+Droite');
  await page.attendre('document.activeElement.closest(".panneau") !== document.querySelectorAll(".panneau:not([hidden])")[0]');
});

essai('un bord ne mange pas son voisin, et deux pages ouvertes restent d’accord', async (page, t) => {
  const autre = await PageVue.ouvrir(t, navigateur, page);
  await diviser(page, 'Ctrl+Maj+D');
  await autre.attendre(`${CADRES}.length === 2`);
  await page.evaluer(`${SEPARATEURS}[0].focus()`);
  await page.touche('Fin');
  await attendreLesCadres(page, 'b[2] === 120');
  await attendreLesCadres(autre, 'b[2] === 120');
  await page.demander('Emulation.setDeviceMetricsOverride', { width: 700, height: 400, deviceScaleFactor: 1, mobile: false });
  await attendreLesCadres(page, 'a[2] + b[2] === 699 && b[2] === 120');
  await autre.touche('Ctrl+Maj+K');
  for (const une of [page, autre]) await une.attendre(`${CADRES}.length === 1 && ${SEPARATEURS}.length === 0`);
  assert.deepEqual(autre.fautes, []);
});
