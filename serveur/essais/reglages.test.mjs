import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { Navigateur, PageVue, sansNavigateur } from './navigateur.mjs';

let navigateur;

before(async () => sansNavigateur || (navigateur = await Navigateur.lancer()));
after(() => navigateur?.fermer());

const essai = (phrase, faire) => test(phrase, { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur);
  await faire(page, t);
  assert.deepEqual(page.fautes, []);
});

const GARDES = 'JSON.parse(localStorage.getItem("keltrove-reglages"))';
const valeurs = (page) => page.evaluer('import("/reglages.js").then(({ valeurs }) => valeurs)');
const garder = async (page, texte) => {
  await page.evaluer(`localStorage.setItem("keltrove-reglages", ${JSON.stringify(texte)})`);
  await page.recharger();
};

essai('un réglage gardé de travers reprend sa valeur d’origine, et n’emporte pas les autres', async (page) => {
  const origine = await valeurs(page);
  for (const texte of ['null', '[]', '"corps"', '{', '{"corps":"grand","lecteur":1,"collage":null,"prevenir":{}}']) {
    await garder(page, texte);
    assert.deepEqual(await valeurs(page), origine, texte);
  }
  await garder(page, '{"corps":400,"collage":false,"lecteur":"oui","à venir":[1]}');
  assert.deepEqual(await valeurs(page), { ...origine, corps: 32, collage: false });
  await page.touche('Ctrl+Maj+P');
  await page.cliquer('[name=prevenir]');
  assert.deepEqual(await page.evaluer(GARDES), { corps: 400, collage: false, lecteur: 'oui', 'à venir': [1], prevenir: false });
});

essai('dans une petite fenêtre, les réglages défilent au clavier et « Fermer » reste à l’écran', async (page) => {
  await page.demander('Emulation.setDeviceMetricsOverride', { width: 720, height: 300, deviceScaleFactor: 1, mobile: false });
  await page.touche('Ctrl+Maj+P');
  await page.attendre('document.querySelector(".reglages").open');
  const cadre = (choix) => page.evaluer(`(({ top, bottom }) => ({ top, bottom }))(document.querySelector("${choix}").getBoundingClientRect())`);
  for (const choix of ['.reglages', '.reglages h2', '.fini']) {
    const { top, bottom } = await cadre(choix);
    assert.ok(top >= 0 && bottom <= 300, choix);
  }
  assert.ok((await cadre('.reglages dt:last-of-type')).top > 300);
  for (let i = 0; !(await page.evaluer('document.activeElement.matches(".reglages dl")')); i += 1) {
    assert.ok(i < 50, 'le résumé des touches est hors d’atteinte');
    await page.touche('Tab');
  }
  assert.ok((await cadre('.reglages dl')).top < (await cadre('.fini')).top);
  await page.touche('Échap');
  await page.attendre('!document.querySelector(".reglages").open');
});
