import assert from 'node:assert/strict';
import { writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { Navigateur, PageVue, sansNavigateur } from './navigateur.mjs';

// Ce qui est écrit se retient ici : le vrai presse-papiers est à toute la machine.
const TEMOIN = `window.ecrits = []; navigator.clipboard.writeText = async (texte) => ecrits.push(texte);
  window.envois = []; { const { send } = WebSocket.prototype; WebSocket.prototype.send = function (texte) { envois.push(texte); send.call(this, texte); }; }`;
const QUESTION = 'document.querySelector(".presse-papiers")';
let navigateur;

before(async () => sansNavigateur || (navigateur = await Navigateur.lancer()));
after(() => navigateur?.fermer());

const essai = (phrase, faire) => test(phrase, { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur, { avant: TEMOIN });
  let rang = 0;
  // Le programme écrit tout, puis un mot : quand il se lit, la page a tout lu.
  const emettre = async (...demandes) => {
    rang += 1;
    writeFileSync(join(page.maison.maison, 'octets'), demandes.map((demande) => `\x1b]52;${demande}\x07`).join(''));
    await page.evaluer('document.querySelector(".xterm-helper-textarea").focus()');
    // À de vraies touches : la question peut s’ouvrir entre une touche enfoncée et son relâchement.
    await page.taper(`cat octets; echo lu-$((${rang}))`);
    await page.touche('Entrée');
    await page.attendreLeTexte(`/^lu-${rang} *$/m`);
  };
  await faire(page, emettre);
  assert.deepEqual(page.fautes, []);
});

const regler = (page, nom) => page.evaluer(`import("/reglages.js").then(({ changer }) => changer("${nom}", true))`);
const base64 = (texte) => Buffer.from(texte).toString('base64');
const ouverte = (page) => page.evaluer(`${QUESTION}.open`);
const ecrits = (page) => page.evaluer('ecrits');

essai('un programme n’écrit dans le presse-papiers qu’avec l’accord de l’utilisateur, demandé une fois', async (page, emettre) => {
  await emettre(`c;${base64('sans réglage')}`);
  assert.equal(await ouverte(page), false);
  await regler(page, 'pressePapiers');
  await emettre(`c;${base64('un été 🎉')}`);
  await page.attendre(`${QUESTION}.open`);
  assert.match(await page.evaluer(`${QUESTION}.querySelector("p").textContent`), /^Un programme de « .+ » veut écrire dans le presse-papiers\.$/);
  assert.equal(await page.evaluer(`${QUESTION}.querySelector("pre").textContent`), 'un été 🎉');
  // Ce qui se tapait à cet instant ne répond pas à la place de l’utilisateur.
  await page.touche('Entrée');
  await page.touche('Espace');
  assert.equal(await ouverte(page), true);
  assert.deepEqual(await ecrits(page), []);
  await page.cliquer('.presse-papiers [value=oui]');
  await page.attendre(`!${QUESTION}.open && document.activeElement.className === "xterm-helper-textarea"`);
  await emettre(`;${base64('deux')}`);
  await emettre(...Array.from({ length: 5000 }, (_, i) => `s0;${base64(`trois-${i}`)}`));
  await page.attendre('ecrits.at(-1) === "trois-4999"');
  const [premier, deuxieme, ...autres] = await ecrits(page);
  assert.deepEqual([premier, deuxieme], ['un été 🎉', 'deux']);
  assert.ok(autres.length < 500, `${autres.length} écritures`);
  assert.equal(await ouverte(page), false);
  // Rejoué, rien ne s’écrit ni ne se demande.
  await page.recharger();
  await page.attendreLeTexte('/^lu-4 *$/m');
  assert.equal(await ouverte(page), false);
  assert.deepEqual(await ecrits(page), []);
});

essai('qui refuse n’est pas redérangé', async (page, emettre) => {
  await regler(page, 'pressePapiers');
  await emettre(`c;${base64('un')}`);
  await page.touche('Échap');
  await page.attendre(`!${QUESTION}.open`);
  await emettre(`c;${base64('deux')}`);
  assert.equal(await ouverte(page), false);
  assert.deepEqual(await ecrits(page), []);
});

essai('ni lecture, ni base64 faux, ni octets qui ne sont pas du texte, ni excès', async (page, emettre) => {
  await regler(page, 'pressePapiers');
  await emettre('c;?', 'c;', '', ';', 'c', `p;${base64('x')}`, 'c;YQ', 'c;Y', 'c;a b=', 'c;%%%%', 'c;YQ==YQ==', `z;${base64('x')}`,
    `c;${Buffer.from([0xff, 0xfe]).toString('base64')}`, `c;${base64('x'.repeat(100_003))}`);
  // « YQ », sans ses signes égal, se lit quand même.
  assert.equal(await page.evaluer(`${QUESTION}.querySelector("pre").textContent`), 'a');
  await page.cliquer('.presse-papiers [value=oui]');
  await emettre(`c;${base64('x'.repeat(99_999))}`, 'c;?', 'c;!', `c;${base64('x'.repeat(200_000))}`);
  await page.attendre('ecrits.length === 2');
  assert.deepEqual((await ecrits(page)).map(({ length }) => length), [1, 99_999]);
  // Ce que la page a répondu au programme, d’elle-même ou comme si on l’avait tapé.
  assert.doesNotMatch(await page.evaluer('envois.join()'), /52;/);
});

essai('copier en sélectionnant : à la souris seulement, et si on le veut', async (page) => {
  await page.evaluer("window.copies = []; addEventListener('copy', (e) => copies.push(e.clipboardData.getData('text/plain')))");
  await page.ecrire('clear; echo un-mot-a-copier');
  await page.touche('Entrée');
  await page.attendreLeTexte('/^un-mot-a-copier *\\n\\$ /m');
  const double = async () => {
    const { x, y } = await page.evaluer(`(() => { const { x, y } = document.querySelector('.xterm-screen').getBoundingClientRect();
      return { x: x + 40, y: y + terminaux.choisie().terminal._core._renderService.dimensions.css.cell.height / 2 }; })()`);
    for (const clickCount of [1, 2]) {
      await page.souris('mousePressed', x, y, { clickCount });
      await page.souris('mouseReleased', x, y, { clickCount });
    }
  };
  await double();
  assert.deepEqual(await page.evaluer('copies'), []);
  await regler(page, 'copie');
  await double();
  assert.deepEqual(await page.evaluer('copies'), ['un-mot-a-copier']);
  await page.touche('Ctrl+Maj+F');
  await page.ecrire('mot');
  await page.attendre('/sur|résultat/.test(document.querySelector(".recherche output").value)');
  assert.equal(await page.evaluer('copies.length'), 1);
});
