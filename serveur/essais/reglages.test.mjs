import assert from 'node:assert/strict';
import { essaisDeLaPage } from './navigateur.mjs';

const essai = essaisDeLaPage();

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

const regler = (page, nom, valeur) => page.evaluer(`{ const champ = document.querySelector('[name=${nom}]');
  champ.value = ${JSON.stringify(valeur)}; champ.dispatchEvent(new Event('change', { bubbles: true })); }`);
const OPTIONS = (nom) => `(() => { const { terminal } = [...window.vues.values()][0]; return terminal.options.${nom}; })()`;

essai('police, curseur et historique changent les terminaux ouverts ; ce qui ne convient pas se dit', async (page) => {
  await page.evaluer('import("/terminaux.js").then(({ vues }) => { window.vues = vues; })');
  const origine = await page.evaluer(OPTIONS('fontFamily'));
  const note = 'document.querySelector(".note.police").textContent';
  await page.touche('Ctrl+Maj+P');
  for (const [police, phrase] of [['Nulle Part Ailleurs', /pas installée/], ['DejaVu Sans', /même largeur/], ['a", serif', /^$/]]) {
    await regler(page, 'police', police);
    assert.match(await page.evaluer(note), phrase);
    assert.equal(await page.evaluer(OPTIONS('fontFamily')), origine);
  }
  assert.equal(await page.evaluer('document.querySelector("[name=police]").value'), '');
  await page.evaluer('document.querySelector("[name=police]").focus()');
  assert.ok((await page.evaluer('[...document.querySelectorAll("#polices option")].map((o) => o.value)')).includes('DejaVu Sans Mono'));
  await regler(page, 'police', 'DejaVu Sans Mono');
  assert.equal(await page.evaluer(note), '');
  assert.equal(await page.evaluer(OPTIONS('fontFamily')), `"DejaVu Sans Mono", ${origine}`);
  await regler(page, 'curseur', 'barre');
  await page.cliquer('[name=clignotant]');
  await regler(page, 'historique', 50);
  assert.equal(await page.evaluer('document.querySelector("[name=historique]").value'), '1000');
  await page.touche('Échap');
  await page.ecrire('seq 3000');
  await page.touche('Entrée');
  await page.attendreLeTexte('/3000\\n\\$ /');
  assert.equal(await page.evaluer(OPTIONS('cursorStyle')), 'bar');
  assert.equal(await page.evaluer(OPTIONS('cursorBlink')), true);
  assert.ok((await page.evaluer('[...vues.values()][0].terminal.buffer.normal.length')) < 1100);
});

essai('Ctrl+molette change la taille du texte ; avec Alt en plus, elle va au programme', async (page) => {
  const corps = () => page.evaluer('import("/reglages.js").then(({ valeurs }) => valeurs.corps)');
  const rouler = (deltaY, modifiers) => page.demander('Input.dispatchMouseEvent', { type: 'mouseWheel', x: 300, y: 300, deltaX: 0, deltaY, modifiers });
  await page.ecrire("stty -echo; printf '\\e[?1000h\\e[?1006hpret\\n'; cat -v");
  await page.touche('Entrée');
  await page.attendreLeTexte('/^pret/m');
  for (const deltaY of [-120, -120, -120, 120]) await rouler(deltaY, 2);
  assert.equal(await corps(), 16);
  for (let i = 0; i < 5; i += 1) await rouler(20, 2);
  assert.equal(await corps(), 15);
  await rouler(-120, 2 | 1);
  await page.touche('Entrée');
  const vu = await page.attendreLeTexte('/\\^\\[\\[<[^M]*M/');
  assert.match(vu, /<88;/);
  assert.equal(await corps(), 15);
  assert.equal(await page.evaluer('visualViewport.scale'), 1);
});

essai('l’interpréteur se choisit parmi ceux du système, et le prochain terminal en est', async (page) => {
  await page.touche('Ctrl+Maj+P');
  const dash = await page.attendre('[...document.querySelectorAll("[name=interpreteur] option")].map((o) => o.value).find((chemin) => chemin.endsWith("/dash"))');
  await regler(page, 'interpreteur', dash);
  await page.touche('Échap');
  await page.touche('Ctrl+Maj+T');
  await page.attendre('document.querySelector(".onglet + .onglet.choisi")');
  await page.attendreLeTexte('/[$#] /');
  await page.ecrire('echo "<$0>"');
  await page.touche('Entrée');
  await page.attendreLeTexte('/^<.*dash>/m');
  await page.recharger();
  assert.equal(await page.attendre('document.querySelector("[name=interpreteur]").value'), dash);
});
