import assert from 'node:assert/strict';
import { writeFileSync } from 'node:fs';
import { essaisDeLaPage } from './navigateur.mjs';

const essai = essaisDeLaPage();

// KELTROVE_CAPTURES=dossier garde l’image de chaque état.
async function photographier(page, nom) {
  if (!process.env.KELTROVE_CAPTURES) return;
  const { data } = await page.demander('Page.captureScreenshot');
  writeFileSync(`${process.env.KELTROVE_CAPTURES}/${nom}.png`, Buffer.from(data, 'base64'));
}

const demander = (page, name, value) => page.demander('Emulation.setEmulatedMedia', { features: [{ name, value }] });
// Une page de 1280 sur 820 points, dont tout est deux fois plus grand.
const doubler = (page) => page.demander('Emulation.setDeviceMetricsOverride', { width: 640, height: 410, deviceScaleFactor: 2, mobile: false });
const ANIMATIONS = 'document.getAnimations().length';
const TRAVAIL = `document.querySelector('.onglet').insertAdjacentHTML('beforeend', '<div class="progression" data-etat="indeterminee"></div>')`;

essai('à qui le demande, rien ne bouge', async (page) => {
  await page.evaluer(TRAVAIL);
  await page.attendre(`${ANIMATIONS} > 0`);
  await demander(page, 'prefers-reduced-motion', 'reduce');
  assert.equal(await page.evaluer(ANIMATIONS), 0);
});

essai('un curseur clignotant ne clignote plus à qui ne veut rien voir bouger', async (page) => {
  await page.evaluer('window.posees = 0; { const poser = setInterval; window.setInterval = (...a) => { posees += a[1] === 530; return poser(...a); }; }');
  const clignoter = (oui) => page.evaluer(`import("/reglages.js").then(({ changer }) => changer("clignotant", ${oui}))`);
  await demander(page, 'prefers-reduced-motion', 'reduce');
  await clignoter(true);
  await page.ecrire('echo immobile-$((1 + 1))');
  await page.touche('Entrée');
  await page.attendreLeTexte('/immobile-2/');
  assert.equal(await page.evaluer('posees'), 0);
  await demander(page, 'prefers-reduced-motion', 'no-preference');
  await page.ecrire('echo mobile-$((1 + 1))');
  await page.attendre('posees > 0');
});

essai('deux fois plus grande, la page tient et ses réglages défilent', async (page) => {
  await doubler(page);
  await page.touche('Ctrl+Maj+P');
  await page.attendre('document.querySelector(".reglages").open');
  await photographier(page, 'double-reglages');
  const cadre = (choix) => page.evaluer(`(({ top, right, bottom, left }) => [top >= 0, left >= 0, right <= 640, bottom <= 410])(document.querySelector("${choix}").getBoundingClientRect())`);
  for (const choix of ['.reglages', '.fini', '.reglages h2']) assert.deepEqual(await cadre(choix), [true, true, true, true], choix);
  assert.ok(await page.evaluer('(({ scrollHeight, clientHeight }) => scrollHeight > clientHeight)(document.querySelector(".sections"))'));
  await page.touche('Échap');
  await page.touche('Ctrl+Maj+F');
  await photographier(page, 'double-recherche');
  assert.deepEqual(await cadre('.recherche'), [true, true, true, true]);
});

// Le contraste de deux couleurs, de 1 à 21.
const CONTRASTE = `(a, b) => { const pinceau = Object.assign(document.createElement('canvas'), { width: 1, height: 1 }).getContext('2d', { willReadFrequently: true });
  const clarte = (couleur) => { pinceau.fillStyle = couleur; pinceau.fillRect(0, 0, 1, 1);
    const [r, v, b] = [...pinceau.getImageData(0, 0, 1, 1).data].map((c) => (c / 255 <= 0.04045 ? c / 255 / 12.92 : ((c / 255 + 0.055) / 1.055) ** 2.4));
    return 0.2126 * r + 0.7152 * v + 0.0722 * b + 0.05; };
  const [x, y] = [clarte(a), clarte(b)]; return Math.max(x, y) / Math.min(x, y); }`;

essai('au clavier, ce qui a le focus se voit sous tous les thèmes, et tout s’atteint', async (page) => {
  const changer = (theme) => page.evaluer(`import("/reglages.js").then(({ changer }) => changer("theme", "${theme}"))`);
  await page.touche('Ctrl+Maj+O');
  for (const theme of await page.evaluer('[...document.querySelector("[name=theme]").options].map((o) => o.value)')) {
    await changer(theme);
    const [largeur, contraste] = await page.evaluer(`(() => { const { outlineWidth, outlineColor } = getComputedStyle(document.activeElement);
      const dessous = getComputedStyle(document.querySelector('.onglet.choisi')).backgroundColor; return [parseFloat(outlineWidth), (${CONTRASTE})(outlineColor, dessous)]; })()`);
    assert.ok(largeur >= 2 && contraste >= 3, `${theme} : ${largeur} px, ${contraste}`);
  }
  await changer('systeme');
  // Des onglets, Tab mène aux boutons du bandeau, puis au terminal, qui le garde pour lui.
  const atteints = [];
  for (let i = 0; i < 12 && !(await page.evaluer('document.activeElement.matches(".xterm-helper-textarea")')); i += 1) {
    atteints.push(await page.evaluer('document.activeElement.name || document.activeElement.classList[document.activeElement.classList.length - 1]'));
    await page.touche('Tab');
  }
  assert.deepEqual(atteints, ['choisir', 'nouveau', 'colonnes', 'lignes', 'regler']);
  await page.touche('Tab');
  assert.ok(await page.evaluer('document.activeElement.matches(".xterm-helper-textarea")'));
});

essai('un contraste plus fort, ou les couleurs du système, laissent voir l’onglet choisi et le terminal', async (page) => {
  await page.touche('Ctrl+Maj+T');
  await page.attendre('document.querySelectorAll(".onglet").length === 2');
  const discret = 'getComputedStyle(document.querySelector(".onglet:not(.choisi)")).color';
  const ordinaire = await page.evaluer(discret);
  await demander(page, 'prefers-contrast', 'more');
  assert.notEqual(await page.evaluer(discret), ordinaire);
  assert.equal(await page.evaluer(discret), await page.evaluer('getComputedStyle(document.body).color'));
  await photographier(page, 'contraste');
  await demander(page, 'forced-colors', 'active');
  const cadre = (choix) => page.evaluer(`getComputedStyle(document.querySelector('${choix}')).outlineStyle`);
  assert.deepEqual([await cadre('.onglet.choisi'), await cadre('.onglet:not(.choisi)')], ['solid', 'none']);
  await photographier(page, 'couleurs-du-systeme');
});
