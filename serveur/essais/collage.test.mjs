import assert from 'node:assert/strict';
import { existsSync, readFileSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { Navigateur, PageVue, sansNavigateur, TEXTE } from './navigateur.mjs';
import { preparerMaison } from './outils.mjs';

const PIEGES = ['\x1b[201~\rtouch pris\r', 'a\x03\rtouch pris\r', '\x9b201~\rtouch pris\r', 'a\x16\x1b[201~\ntouch pris\n', '\x0dtouch pris\x0d\x1b\x1b[201~\r'];
let navigateur;

before(async () => sansNavigateur || (navigateur = await Navigateur.lancer()));
after(() => navigateur?.fermer());

const essai = (phrase, faire) => test(phrase, { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur);
  await faire(page, t);
  assert.deepEqual(page.fautes, []);
});

// Un collage tel que le navigateur l’annonce, de n’importe quelle source.
const coller = (page, texte) => page.evaluer(`(() => { const clipboardData = new DataTransfer(); clipboardData.setData('text/plain', ${JSON.stringify(texte)});
  document.activeElement.dispatchEvent(new ClipboardEvent('paste', { clipboardData, bubbles: true, cancelable: true })); })()`);
const lancerUneLigne = async (page, ligne) => {
  await page.ecrire(ligne);
  await page.touche('Entrée');
};
const QUESTION = 'document.querySelector("dialog.collage[open]")';

essai('un collage encadré ne s’exécute jamais de lui-même', async (page) => {
  // Un Ctrl+C efface aussi ce qui est tapé d’avance : on attend chaque fois l’invite.
  const attendreLeCompte = (motif, nombre) => page.attendre(`(${TEXTE}.match(${motif}) ?? []).length === ${nombre}`);
  for (const [rang, piege] of PIEGES.entries()) {
    await coller(page, `echo ${piege}`);
    await attendreLeCompte('/touch.pris/g', rang + 1);
    await page.touche('Ctrl+c');
    await attendreLeCompte('/\\^C\\s+\\$/g', rang + 1);
    await lancerUneLigne(page, `echo apres-$((${rang} + 10))`);
    await page.attendreLeTexte(`/apres-${rang + 10}\\n\\$ /`);
    assert.equal(existsSync(join(page.maison.maison, 'pris')), false, JSON.stringify(piege));
  }
  // Tabulations et lignes, elles, passent.
  await page.evaluer('import("/reglages.js").then(({ changer }) => changer("collage", false))');
  await lancerUneLigne(page, 'echo pret-$((1 + 1)); cat > recu');
  await page.attendreLeTexte('/pret-2/');
  await coller(page, 'a\tb\u00e9\r\n\x1b\x07\x00\x7f\x85c');
  await page.touche('Entrée');
  await page.touche('Ctrl+d');
  await lancerUneLigne(page, 'echo lu-$((1 + 1))');
  await page.attendreLeTexte('/lu-2/');
  assert.equal(readFileSync(join(page.maison.maison, 'recu'), 'utf8'), 'a\tbé\nc\n');
});

essai('plusieurs lignes, là où elles partiraient aussitôt, se demandent d’abord', async (page) => {
  const recu = () => readFileSync(join(page.maison.maison, 'recu'), 'utf8');
  await lancerUneLigne(page, 'stty -echo; echo pret-$((1 + 1)); exec cat > recu');
  await page.attendreLeTexte('/pret-2/');
  const demander = async (bouton) => {
    await coller(page, 'un <b>\ndeux\n');
    await page.attendre(QUESTION);
    assert.equal(await page.evaluer(`${QUESTION}.querySelector('pre').textContent`), 'un <b>\ndeux\n');
    if (bouton) await page.cliquer(`.collage [value="${bouton}"]`);
    else await page.touche('Échap');
    await page.attendre(`!${QUESTION}`);
  };
  const attendreLeRecu = (voulu) => page.attendre('true').then(async () => {
    for (let i = 0; recu() !== voulu && i < 500; i += 1) await new Promise((suite) => setTimeout(suite, 10));
    assert.equal(recu(), voulu);
  });
  await demander('');
  await demander('ligne');
  await page.touche('Entrée');
  await attendreLeRecu('un <b> deux\n');
  await demander('lignes');
  await attendreLeRecu('un <b> deux\nun <b>\ndeux\n');
  // Une seule ligne ne demande rien.
  await coller(page, 'seule');
  await page.touche('Entrée');
  await attendreLeRecu('un <b> deux\nun <b>\ndeux\nseule\n');
  await coller(page, 'x\ny\n');
  await page.attendre(QUESTION);
  await page.cliquer('.collage [name=neplus]');
  await page.cliquer('.collage [value="lignes"]');
  await coller(page, 'z\n');
  await attendreLeRecu('un <b> deux\nun <b>\ndeux\nseule\nx\ny\nz\n');
  assert.equal(await page.evaluer('JSON.parse(localStorage.getItem("keltrove-reglages")).collage'), false);
});

essai('un programme qui ne lit plus se dit, et le reste du collage est abandonné', async (page) => {
  await lancerUneLigne(page, 'stty raw -echo; echo sourd-$((1 + 1)); sleep 600');
  await page.attendreLeTexte('/sourd-2/');
  await coller(page, 'x'.repeat(5_000_000));
  await page.attendre('/ne lit pas ce qu’on lui envoie/.test(document.querySelector(".avis").textContent)');
});

essai('cinq mégaoctets collés à qui les lit arrivent entiers, et la frappe qui suit vient après', async (page) => {
  await lancerUneLigne(page, 'stty -echo; echo pret-$((1 + 1)); cat > recu; echo fini-$((1 + 1))');
  await page.attendreLeTexte('/pret-2/');
  await page.evaluer('import("/reglages.js").then(({ changer }) => changer("collage", false))');
  await page.evaluer(`(() => { const clipboardData = new DataTransfer(); clipboardData.setData('text/plain', ('é'.repeat(99) + '\\n').repeat(25_000));
    document.activeElement.dispatchEvent(new ClipboardEvent('paste', { clipboardData, bubbles: true, cancelable: true })); })()`);
  await lancerUneLigne(page, 'fin');
  await page.touche('Ctrl+d');
  await page.attendreLeTexte('/fini-2/');
  assert.equal(readFileSync(join(page.maison.maison, 'recu'), 'utf8'), `${`${'é'.repeat(99)}\n`.repeat(25_000)}fin\n`);
});

test('un terminal éteint se voit, se lit, et se rouvre d’un clic', { skip: sansNavigateur }, async (t) => {
  const maison = await preparerMaison(t);
  const terminaux = Array.from({ length: 51 }, (_, i) => ({ id: `t${i}`, nom: `Nom ${i}`, groupe: `g${i}`, dossier: '/usr', lignes: [`vu-${i} $`] }));
  writeFileSync(maison.cheminCarnet, JSON.stringify({ version: 1, terminaux }));
  const page = await PageVue.ouvrir(t, navigateur, { maison });
  await page.evaluer('import("/terminaux.js").then(({ choisir }) => choisir("t50"))');
  await page.attendreLeTexte('/vu-50/');
  assert.equal(await page.evaluer('document.querySelectorAll(".onglet.eteint").length'), 1);
  await page.cliquer('#panneau-t50 .rouvrir');
  await page.attendre('/pas de quoi ouvrir/.test(document.querySelector(".avis").textContent)');
  await page.evaluer('import("/liaison.js").then(({ envoyer }) => envoyer({ type: "fermer", id: "t0" }))');
  await page.attendre('!document.querySelector("#onglet-t0")');
  await page.evaluer('import("/terminaux.js").then(({ choisir }) => choisir("t50"))');
  await page.touche('Entrée');
  await page.attendre('!document.querySelector(".eteint")');
  await page.ecrire('echo rouvert-$((1 + 1))');
  await page.touche('Entrée');
  await page.attendreLeTexte('/rouvert-2/');
  assert.deepEqual(page.fautes, []);
});

essai('quitter le champ d’un nom sans l’avoir changé laisse le titre libre', async (page) => {
  const nom = 'document.querySelector(".onglet .choisir").textContent';
  await lancerUneLigne(page, "for t in un deux; do printf '\\033]0;%s\\a' $t; read -rsn1; done; printf '\\033]0;trois\\a'");
  await page.attendre(`${nom} === "un"`);
  await page.touche('Ctrl+Maj+O');
  await page.touche('F2');
  await page.evaluer('import("/liaison.js").then(({ envoyer }) => envoyer({ type: "saisie", id: document.querySelector(".onglet").dataset.terminal, texte: "x" }))');
  await page.attendre(`${nom} === "deux"`);
  await page.touche('Entrée');
  await page.ecrire('x');
  await page.attendre(`${nom} === "trois"`);
});
