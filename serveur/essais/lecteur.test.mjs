import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { Navigateur, PageVue, sansNavigateur } from './navigateur.mjs';

let navigateur;

before(async () => sansNavigateur || (navigateur = await Navigateur.lancer()));
after(() => navigateur?.fermer());

const essai = (phrase, faire, avant = '') => test(phrase, { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur, { avant });
  await faire(page);
  assert.deepEqual(page.fautes, []);
});

const LU = 'document.querySelector(".xterm-accessibility") !== null';
const COCHEE = 'document.querySelector("[name=lecteur]").checked';
const AVERTI = '!document.querySelector("#sans-lecteur").hidden';
const dire = (page, tourne, voitLaPage = true) => page.evaluer(`{ window.keltroveLecteur = ${JSON.stringify({ tourne, voitLaPage })};
  dispatchEvent(new Event('lecteur')); }`);
const etat = async (page) => [await page.evaluer(LU), await page.evaluer(COCHEE), await page.evaluer(AVERTI)];

essai('les terminaux se font lire dès qu’un lecteur d’écran tourne, et tant qu’il tourne', async (page) => {
  assert.deepEqual(await etat(page), [false, false, false]);
  await dire(page, true);
  assert.deepEqual(await etat(page), [true, true, false]);
  await dire(page, false);
  assert.deepEqual(await etat(page), [false, false, false]);
});

essai('ce que l’utilisateur a choisi l’emporte, et se retient', async (page) => {
  await dire(page, true);
  await page.touche('Ctrl+Maj+P');
  await page.cliquer('[name=lecteur]');
  assert.deepEqual(await etat(page), [false, false, false]);
  await page.recharger();
  await dire(page, true);
  assert.deepEqual(await etat(page), [false, false, false]);
  await page.touche('Ctrl+Maj+P');
  await page.cliquer('[name=lecteur]');
  await dire(page, false);
  assert.deepEqual(await etat(page), [true, true, false]);
});

essai('changer un autre réglage n’est pas choisir celui-ci', async (page) => {
  await page.touche('Ctrl+Maj+Plus');
  await page.recharger();
  await dire(page, true);
  assert.deepEqual(await etat(page), [true, true, false]);
  await page.touche('Ctrl+Maj+Plus');
  await dire(page, false);
  assert.deepEqual(await etat(page), [false, false, false]);
});

essai('une fenêtre dont le lecteur ne voit pas la page le dit, et ne promet rien', async (page) => {
  await dire(page, true, false);
  assert.deepEqual(await etat(page), [false, false, true]);
  await page.touche('Ctrl+Maj+P');
  const phrase = await page.evaluer('document.querySelector("#sans-lecteur").innerText');
  assert.match(phrase, /ne voit pas l’intérieur de cette fenêtre\. Ouvrez plutôt http:\/\/localhost:\d+ dans votre navigateur/);
});

essai('chaque saisie porte le nom de son terminal, et le suit', async (page) => {
  const saisies = () => page.evaluer('[...document.querySelectorAll(".xterm textarea")].map(({ ariaLabel }) => ariaLabel)');
  await page.touche('Ctrl+Maj+D');
  await page.attendre('document.querySelectorAll(".xterm textarea").length === 2');
  assert.deepEqual(await saisies(), ['Terminal 1 : saisie', 'Terminal 2 : saisie']);
  await page.touche('Ctrl+Maj+O');
  await page.touche('F2');
  await page.ecrire('copies');
  await page.touche('Entrée');
  await page.attendre('[...document.querySelectorAll(".xterm textarea")].some(({ ariaLabel }) => ariaLabel === "copies : saisie")');
});

essai('le compte de la recherche se dit aussi', async (page) => {
  await page.touche('Ctrl+Maj+F');
  await page.ecrire('introuvable');
  await page.attendre('window.dits.includes("Aucun résultat")');
}, `window.dits = [];
  window.webkit = { messageHandlers: { keltroveLecteur: { postMessage: (texte) => window.dits.push(texte) } } };
  window.keltroveLecteur = { tourne: true, voitLaPage: true };`);

essai('ce que l’application a dit avant la page compte aussi', async (page) => {
  assert.deepEqual(await etat(page), [true, true, false]);
}, 'window.keltroveLecteur = { tourne: true, voitLaPage: true };');
