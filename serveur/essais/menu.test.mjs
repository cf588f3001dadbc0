import assert from 'node:assert/strict';
import { test } from 'node:test';
import { essaisDeLaPage } from './navigateur.mjs';
import { Tampon } from '../lib/Tampon.mjs';

const PRESSE_PAPIERS = "window.ouverts = []; window.open = (...a) => ouverts.push(a); navigator.clipboard.readText = async () => 'venu-du-presse-papiers';";
const essai = essaisDeLaPage({ avant: PRESSE_PAPIERS });

const OUVERT = '!document.querySelector(".fond-de-menu").hidden';
const AU_TERMINAL = 'document.activeElement.className === "xterm-helper-textarea"';
const articles = (page) => page.evaluer('[...document.querySelectorAll(".menu button")].map((b) => (b.disabled ? "– " : "") + b.ariaLabel)');
const clicDroit = async (page, selecteur, options = {}) => {
  const { x, y } = await page.centre(selecteur);
  await page.souris('mousePressed', x, y, { button: 'right', buttons: 2, ...options });
  await page.souris('mouseReleased', x, y, { button: 'right', buttons: 0, ...options });
};
const choisir = async (page, titre) => {
  await page.evaluer(`[...document.querySelectorAll('.menu button')].find((b) => b.ariaLabel === ${JSON.stringify(titre)}).focus()`);
  await page.touche('Entrée');
};
const lancerUneLigne = async (page, ligne) => {
  await page.ecrire(ligne);
  await page.touche('Entrée');
};

essai('le menu du terminal grise ce qui est sans objet, se parcourt au clavier, et rend le clavier', async (page) => {
  await clicDroit(page, '.xterm-screen');
  await page.attendre(OUVERT);
  assert.deepEqual(await articles(page), [
    '– Copier', 'Coller', 'Tout sélectionner', 'Chercher', '– Ouvrir le lien', 'Effacer', 'Nouveau terminal', 'Diviser',
    'Diviser de haut en bas',
  ]);
  assert.equal(await page.evaluer('document.activeElement.role'), 'menu');
  const suivre = async (touche, voulu) => {
    await page.touche(touche);
    assert.equal(await page.evaluer('document.activeElement.ariaLabel'), voulu);
  };
  await suivre('Bas', 'Coller');
  await suivre('Haut', 'Diviser de haut en bas');
  await suivre('Bas', 'Coller');
  await suivre('Fin', 'Diviser de haut en bas');
  await suivre('Début', 'Coller');
  await page.touche('Échap');
  await page.attendre(`!(${OUVERT}) && ${AU_TERMINAL}`);
  await clicDroit(page, '.xterm-screen');
  await page.cliquer('.regler');
  assert.equal(await page.evaluer(`${OUVERT} || document.querySelector('.reglages').open`), false, 'le clic ne fait que refermer');
  assert.ok(await page.evaluer(AU_TERMINAL));
  await lancerUneLigne(page, 'echo vu-$((1 + 1))');
  await page.attendreLeTexte('/vu-2/');
});

essai('copier, coller et effacer depuis le menu ; l’effacé ne revient pas', async (page) => {
  await lancerUneLigne(page, 'printf "\\e[?2004l"; echo ancien-$((1 + 1)); seq 200');
  await page.attendreLeTexte('/200\\n\\$ /');
  await page.ecrire('echo reste');
  await page.touche('Menu');
  await choisir(page, 'Tout sélectionner');
  await page.evaluer("addEventListener('copy', (e) => { window.copie = e.clipboardData.getData('text/plain'); })");
  await clicDroit(page, '.xterm-screen');
  assert.equal((await articles(page))[0], 'Copier');
  await choisir(page, 'Copier');
  await page.attendre('/ancien-2/.test(copie)');
  await clicDroit(page, '.xterm-screen');
  await choisir(page, 'Effacer');
  await page.attendreLeTexte('/^\\$ echo reste *\\n *\\n/');
  await clicDroit(page, '.xterm-screen');
  await choisir(page, 'Coller');
  await page.attendreLeTexte('/echo restevenu-du-presse-papiers/');
  await page.recharger();
  await page.attendreLeTexte('/^\\$ echo restevenu/');
  assert.doesNotMatch(await page.texte(), /ancien|200/);
});

essai('un programme plein écran garde son dessin, et celui qui a pris la souris son clic', async (page) => {
  await lancerUneLigne(page, "stty -echo; printf '\\e[?1049h\\e[?1000h\\e[?1006hplein\\n'; cat -v");
  await page.attendreLeTexte('/^plein/m');
  await clicDroit(page, '.xterm-screen');
  await page.touche('Entrée');
  await page.attendreLeTexte('/\\^\\[\\[<2;\\d+;\\d+M/');
  assert.equal(await page.evaluer(OUVERT), false);
  await clicDroit(page, '.xterm-screen', { modifiers: 8 });
  await page.attendre(OUVERT);
  assert.ok((await articles(page)).includes('– Effacer'));
  await page.touche('Échap');
  await page.touche('Menu');
  await page.attendre(OUVERT);
});

essai('le lien visé s’ouvre, et son adresse se lit', async (page) => {
  await lancerUneLigne(page, "clear; printf '\\e]8;;https://exemple.test/vrai\\e\\\\faux\\e]8;;\\e\\\\%0.s' $(seq 500)");
  await page.attendreLeTexte('/fauxfaux/');
  const { x, y } = await page.centre('.xterm-screen');
  for (let i = 0; await page.evaluer('document.querySelector(".lien").textContent === ""'); i += 1) {
    assert.ok(i < 300, 'le lien ne se voit pas sous la souris');
    await page.souris('mouseMoved', x + (i % 2), y - 200, { buttons: 0 });
  }
  for (const type of ['mousePressed', 'mouseReleased']) await page.souris(type, x, y - 200, { button: 'right', buttons: 2 });
  await page.attendre(OUVERT);
  assert.equal(await page.evaluer('[...document.querySelectorAll(".menu button")].find((b) => b.ariaLabel === "Ouvrir le lien").title'), 'https://exemple.test/vrai');
  await choisir(page, 'Ouvrir le lien');
  assert.deepEqual(await page.evaluer('ouverts'), [['https://exemple.test/vrai', '_blank', 'noopener']]);
});

essai('un onglet, un nom en cours de saisie et la recherche ont le leur', async (page) => {
  await clicDroit(page, '.choisir');
  assert.deepEqual(await articles(page), ['Renommer', 'Fermer', 'Nouveau terminal']);
  await choisir(page, 'Renommer');
  await page.ecrire('chantier');
  await page.touche('Menu');
  assert.deepEqual(await articles(page), ['– Couper', '– Copier', 'Coller', 'Tout sélectionner']);
  await choisir(page, 'Tout sélectionner');
  await page.touche('Menu');
  await choisir(page, 'Coller');
  await page.attendre('document.querySelector(".renommer").value === "venu-du-presse-papiers"');
  await page.touche('Entrée');
  await page.attendre('/venu-du-presse-papiers/.test(document.querySelector(".choisir").textContent)');
  await clicDroit(page, '.choisir');
  await page.touche('Échap');
  assert.ok(await page.evaluer(AU_TERMINAL));
  await clicDroit(page, '.regler');
  assert.equal(await page.evaluer(OUVERT), false);
});

test('effacer garde la ligne en cours et les modes', () => {
  const tampon = new Tampon();
  tampon.ajouter('\x1b[?2004hsecret\r\nautre\r\n$ ls');
  tampon.effacer();
  assert.equal(tampon.rejouer(), '\x1b[?2004h$ ls');
});
