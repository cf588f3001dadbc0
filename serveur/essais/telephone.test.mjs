import assert from 'node:assert/strict';
import { writeFileSync } from 'node:fs';
import { after, before, test } from 'node:test';
import { Navigateur, PageVue, sansNavigateur } from './navigateur.mjs';

const [LARGEUR, HAUTEUR, AU_DESSUS_DU_CLAVIER] = [390, 844, 480];
let navigateur;

before(async () => sansNavigateur || (navigateur = await Navigateur.lancer()));
after(() => navigateur?.fermer());

const dimensionner = (page, height = HAUTEUR) => page.demander('Emulation.setDeviceMetricsOverride', { width: LARGEUR, height, deviceScaleFactor: 2, mobile: true });
const essai = (phrase, faire) => test(phrase, { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur);
  await page.demander('Emulation.setTouchEmulationEnabled', { enabled: true, maxTouchPoints: 1 });
  await dimensionner(page);
  await page.recharger();
  await faire(page);
  assert.deepEqual(page.fautes, []);
});

// KELTROVE_CAPTURES=dossier garde l’image de chaque état.
async function photographier(page, nom) {
  if (!process.env.KELTROVE_CAPTURES) return;
  const { data } = await page.demander('Page.captureScreenshot');
  writeFileSync(`${process.env.KELTROVE_CAPTURES}/${nom}.png`, Buffer.from(data, 'base64'));
}

const toucher = async (page, choix) => {
  const { x, y } = await page.centre(choix);
  await page.demander('Input.dispatchTouchEvent', { type: 'touchStart', touchPoints: [{ x, y }] });
  await page.demander('Input.dispatchTouchEvent', { type: 'touchEnd', touchPoints: [] });
};

// Ce qui déborde de l’écran, hors de ce qui défile ; et ce qui se manque du doigt.
const DEBORDENT = `[...document.querySelectorAll('body *')].filter((e) => e.checkVisibility() && !e.closest('.onglets, .xterm, svg, .annonce'))
  .filter((e) => { const { left, right, width } = e.getBoundingClientRect(); return width > 0 && (left < -1 || right > ${LARGEUR + 1}); })
  .map((e) => e.outerHTML.slice(0, 80))`;
const TROP_PETITS = `[...document.querySelectorAll('button, select, dialog label, input:not([type=checkbox])')].filter((e) => e.checkVisibility())
  .filter((e) => { const { width, height } = e.getBoundingClientRect(); return width < 40 || height < 39.5; })
  .map((e) => e.outerHTML.slice(0, 80))`;
const tenir = async (page, nom) => {
  await photographier(page, nom);
  assert.equal(await page.evaluer('document.documentElement.scrollWidth'), LARGEUR, nom);
  assert.deepEqual(await page.evaluer(DEBORDENT), [], nom);
  assert.deepEqual(await page.evaluer(TROP_PETITS), [], nom);
};

essai('sur un téléphone rien ne déborde, tout se touche, et les onglets défilent', async (page) => {
  await tenir(page, 'telephone');
  for (let nombre = 2; nombre <= 5; nombre += 1) {
    await toucher(page, '.nouveau');
    await page.attendre(`document.querySelectorAll('.onglet').length === ${nombre}`);
  }
  await tenir(page, 'telephone-onglets');
  assert.ok(await page.evaluer('(({ scrollWidth, clientWidth }) => scrollWidth > clientWidth)(document.querySelector(".onglets"))'));
  await page.evaluer('import("/recherche.js").then(({ ouvrirLaRecherche }) => ouvrirLaRecherche())');
  await tenir(page, 'telephone-recherche');
  await toucher(page, '.recherche .fermer');
  await toucher(page, '.regler');
  await page.attendre('document.querySelector(".reglages").open');
  await tenir(page, 'telephone-reglages');
  await toucher(page, '.fini');
  await page.attendre('!document.querySelector(".reglages").open');
});

essai('le clavier du téléphone ne cache pas la ligne où l’on tape', async (page) => {
  await page.ecrire('seq 200');
  await page.touche('Entrée');
  await page.attendreLeTexte('/200\\n\\$ /');
  await dimensionner(page, AU_DESSUS_DU_CLAVIER);
  await page.attendre(`document.querySelector('.panneau').getBoundingClientRect().bottom <= ${AU_DESSUS_DU_CLAVIER}`);
  await page.attendreLeTexte('/200\\n\\$ *\\n?$/');
  await photographier(page, 'telephone-clavier');
});

essai('l’historique défile du doigt', async (page) => {
  await page.ecrire('seq 200');
  await page.touche('Entrée');
  await page.attendreLeTexte('/200\\n\\$ /');
  const { x, y } = await page.centre('.panneau:not([hidden]) .xterm-screen');
  const glisser = (type, dy) => page.demander('Input.dispatchTouchEvent', { type, touchPoints: type === 'touchEnd' ? [] : [{ x, y: y + dy }] });
  await glisser('touchStart', 0);
  for (let dy = 20; dy <= 300; dy += 20) await glisser('touchMove', dy);
  await glisser('touchEnd');
  await page.evaluer('import("/terminaux.js").then(({ choisie }) => { window.choisie = choisie; })');
  await page.attendre('(({ viewportY, baseY }) => viewportY < baseY - 5)(choisie().terminal.buffer.active)');
});

// Le doigt reste posé tant que le menu n’est pas là ; levé, il le laisse ouvert.
const presser = async (page, choix) => {
  const { x, y } = await page.centre(choix);
  await page.demander('Input.dispatchTouchEvent', { type: 'touchStart', touchPoints: [{ x, y }] });
  await page.attendre('!document.querySelector(".fond-de-menu").hidden');
  await page.demander('Input.dispatchTouchEvent', { type: 'touchEnd', touchPoints: [] });
};
const articles = (page) => page.evaluer('[...document.querySelectorAll(".menu button")].map(({ ariaLabel }) => ariaLabel)');

essai('le doigt posé longtemps ouvre le menu du terminal, puis celui de l’onglet', async (page) => {
  await presser(page, '.panneau:not([hidden]) .xterm-screen');
  assert.deepEqual((await articles(page)).slice(0, 3), ['Copier', 'Coller', 'Tout sélectionner']);
  await tenir(page, 'telephone-menu');
  await toucher(page, '.menu button[aria-label="Nouveau terminal"]');
  await page.attendre('document.querySelectorAll(".onglet").length === 2');
  await presser(page, '.onglet');
  assert.deepEqual(await articles(page), ['Renommer', 'Fermer', 'Nouveau terminal']);
});
