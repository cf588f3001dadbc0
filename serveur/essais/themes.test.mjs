import assert from 'node:assert/strict';
import { essaisDeLaPage } from './navigateur.mjs';

const MINIMUM = 4.5;
const essai = essaisDeLaPage();

const prefererClair = (page, oui) => page.demander('Emulation.setEmulatedMedia', {
  features: [{ name: 'prefers-color-scheme', value: oui ? 'light' : 'dark' }],
});
const regler = (page, nom, valeur) => page.evaluer(`import("/reglages.js").then(({ changer }) => changer("${nom}", ${JSON.stringify(valeur)}))`);
const fond = (page) => page.evaluer('getComputedStyle(document.querySelector(".panneau")).backgroundColor');

// Les couleurs du thème en cours, en octets : celles de la page, et les seize des terminaux.
const COULEURS = `(() => {
  const pinceau = document.createElement('canvas').getContext('2d', { willReadFrequently: true });
  const temoin = document.body.appendChild(document.createElement('i'));
  const lire = (couleur) => {
    temoin.style.color = couleur;
    pinceau.fillStyle = getComputedStyle(temoin).color;
    pinceau.fillRect(0, 0, 1, 1);
    return [...pinceau.getImageData(0, 0, 1, 1).data.slice(0, 3)];
  };
  const page = ['fond', 'fond-terminal', 'texte', 'texte-discret', 'survol', 'filet', 'choisi', 'accent', 'selection'];
  const seize = getComputedStyle(document.documentElement).getPropertyValue('--couleurs').trim().split(/\\s+/).map(lire);
  const lues = { seize, ...Object.fromEntries(page.map((nom) => [nom, lire('var(--' + nom + ')')])) };
  temoin.remove();
  return lues;
})()`;

function contraste(a, b) {
  const clarte = (octets) => {
    const [r, v, bleu] = octets.map((octet) => octet / 255).map((c) => (c <= 0.04045 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4));
    return 0.2126 * r + 0.7152 * v + 0.0722 * bleu;
  };
  const [plus, moins] = [clarte(a), clarte(b)].sort((un, autre) => autre - un);
  return (plus + 0.05) / (moins + 0.05);
}

essai('chaque thème se lit : texte, sélection, onglets, et les couleurs des programmes', async (page) => {
  const choix = await page.evaluer('[...document.querySelectorAll("[name=theme] option")].map((o) => o.value)');
  for (const theme of choix) {
    await regler(page, 'theme', theme);
    assert.equal(await page.evaluer('document.documentElement.dataset.theme'), theme === 'systeme' ? 'clair' : theme);
    const c = await page.evaluer(COULEURS);
    const verifier = (texte, dessous, quoi) => assert.ok(contraste(texte, dessous) >= MINIMUM, `${theme}, ${quoi} : ${contraste(texte, dessous)}`);
    for (const nom of ['fond', 'fond-terminal', 'survol', 'filet', 'choisi', 'selection']) verifier(c.texte, c[nom], nom);
    for (const nom of ['fond', 'survol']) verifier(c['texte-discret'], c[nom], `texte discret sur ${nom}`);
    verifier(c.accent, c.fond, 'accent');
    const sombre = contraste(c['fond-terminal'], [0, 0, 0]) < contraste(c['fond-terminal'], [255, 255, 255]);
    for (const [rang, couleur] of c.seize.entries()) if (rang > 0 || !sombre) verifier(couleur, c['fond-terminal'], `couleur ${rang}`);
    const attendu = await page.evaluer('getComputedStyle(document.documentElement).colorScheme');
    assert.equal(attendu, sombre ? 'dark' : 'light', theme);
  }
});

essai('« Comme le bureau » suit le bureau ; un thème choisi lui résiste, et reste au rechargement', async (page) => {
  await prefererClair(page, false);
  await page.attendre('document.documentElement.dataset.theme === "sombre"');
  const sombre = await fond(page);
  await prefererClair(page, true);
  await page.attendre('document.documentElement.dataset.theme === "clair"');
  assert.notEqual(await fond(page), sombre);
  await page.touche('Ctrl+Maj+P');
  await page.evaluer('Object.assign(document.querySelector("[name=theme]"), { value: "nuit" }).dispatchEvent(new Event("change", { bubbles: true }))');
  const nuit = await fond(page);
  const texte = await page.evaluer('terminaux.choisie().terminal.options.theme.foreground');
  assert.equal(texte, await page.evaluer('getComputedStyle(document.documentElement).getPropertyValue("--texte").trim()'));
  await prefererClair(page, false);
  await page.recharger();
  assert.equal(await fond(page), nuit);
});
