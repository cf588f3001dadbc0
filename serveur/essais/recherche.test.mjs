import assert from 'node:assert/strict';
import headless from '@xterm/headless';
import { writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { placer, reperer } from '../page/lignes.js';
import { compiler, trouver } from '../page/motif.js';
import { essaisDeLaPage } from './navigateur.mjs';

const essai = essaisDeLaPage();

const lancerUneLigne = async (page, ligne) => {
  await page.ecrire(ligne);
  await page.touche('Entrée');
};
const chercher = async (page, texte) => {
  await page.evaluer('document.querySelector(".recherche input").select()');
  await page.ecrire(texte);
};
// Une seule recherche, et non une par lettre.
const chercherDUnTrait = (page, texte) => page.evaluer(`{
  const champ = document.querySelector(".recherche input");
  champ.value = "${texte}";
  champ.dispatchEvent(new Event("input"));
}`);
const compte = (page, voulu) => page.attendre(`document.querySelector(".recherche output").value.replaceAll("\\u202f", " ") === "${voulu}"`);
const ouvrirLaRecherche = async (page) => {
  await page.touche('Ctrl+Maj+F');
  await page.attendre('document.activeElement.closest(".recherche")');
};

test('un motif : casse, mot entier, expression, et rien quand elle n’est pas finie', () => {
  const vus = (texte, lignes, options) => {
    const trouves = [...trouver(lignes, compiler(texte, options))];
    return trouves.flatMap((rang, i) => (i % 3 ? [] : [lignes[rang].substr(trouves[i + 1], trouves[i + 2])]));
  };
  assert.deepEqual(vus('é.', ['É. é. éa'], {}), ['É.', 'é.']);
  assert.deepEqual(vus('é', ['É é'], { casse: true }), ['é']);
  assert.deepEqual(vus('or', ['encore or or_ ôor (or)'], { mot: true }), ['or', 'or']);
  assert.deepEqual(vus('a+', ['aa ba aaa', ''], { expression: true, mot: true }), ['aa', 'aaa']);
  assert.deepEqual(vus('^a', ['aaa', 'ba'], { expression: true }), ['a']);
  assert.deepEqual(vus('x*', ['axx'], { expression: true }), ['xx']);
  assert.deepEqual(vus(String.raw`\-{"a`, ['-{"a'], { expression: true }), ['-{"a']);
  assert.deepEqual(vus('.', ['🎉'], { expression: true }), ['🎉']);
  for (const incomplete of ['(', '[a', 'a)|(b', '*']) assert.equal(compiler(incomplete, { expression: true, mot: true }), null);
});

test('une ligne repliée n’en fait qu’une, et ses cases se retrouvent malgré les larges et les composés', async () => {
  const terminal = new headless.Terminal({ cols: 10, rows: 4, allowProposedApi: true });
  await new Promise((suite) => terminal.write('un\r\nabcdefghi日本 e\u0301t\u0301 fin\r\n日本日本日本日本\r\n', suite));
  const tampon = terminal.buffer.active;
  const lignes = reperer(tampon);
  assert.deepEqual(lignes.map(({ texte }) => texte).slice(0, 3), ['un', 'abcdefghi日本 e\u0301t\u0301 fin', '日本日本日本日本']);
  const ou = (quoi) => placer(tampon, lignes[1], lignes[1].texte.indexOf(quoi), quoi.length).map(Object.values);
  assert.deepEqual(ou('i日本'), [[1, 8, 1], [2, 0, 4]]);
  assert.deepEqual(ou('t\u0301'), [[2, 6, 1]]);
  assert.deepEqual(ou('fin'), [[2, 8, 2], [3, 0, 1]]);
});

test('au bout d’un tampon plein, la dernière ligne finit là', async () => {
  const terminal = new headless.Terminal({ cols: 10, rows: 2, scrollback: 3, allowProposedApi: true });
  await new Promise((suite) => terminal.write(`${'a'.repeat(40)}\r\nfin`, suite));
  assert.deepEqual(reperer(terminal.buffer.active).map(({ texte }) => texte), ['a'.repeat(40), 'fin']);
  await new Promise((suite) => terminal.write('\r\nb', suite));
  assert.deepEqual(reperer(terminal.buffer.active).map(({ texte }) => texte), ['a'.repeat(30), 'fin', 'b']);
});

essai('chercher compte juste au-delà du millier, et dans tout l’historique', async (page) => {
  await lancerUneLigne(page, 'yes "aiguille et AIGUILLE, aiguilles" | head -9000; echo fi-$((1 + 1))');
  await page.attendreLeTexte('/^fi-2/m');
  await ouvrirLaRecherche(page);
  await chercher(page, 'aiguille');
  // Et ceux de la ligne de commande.
  await compte(page, '27 003 sur 27 003');
  await page.touche('Maj+Entrée');
  await compte(page, '1 sur 27 003');
  await page.attendreLeTexte('/yes "aiguille/');
  await page.attendre('document.querySelectorAll(".xterm-decoration-container > *").length > 50');
  await page.touche('Entrée');
  await compte(page, '27 003 sur 27 003');
  await page.attendreLeTexte('/^fi-2/m');
});

essai('casse, mot entier et expression se choisissent, et le restent', async (page) => {
  await lancerUneLigne(page, 'clear; printf "%s\\n" Aiguille aiguilles aiguille');
  await page.attendreLeTexte('/^Aiguille\\naiguilles\\naiguille\\n/m');
  await ouvrirLaRecherche(page);
  await chercher(page, 'aiguille');
  await compte(page, '3 sur 3');
  await page.cliquer('.bascule[name=mot]');
  await compte(page, '2 sur 2');
  await page.cliquer('.bascule[name=casse]');
  await compte(page, '1 sur 1');
  await page.cliquer('.bascule[name=mot]');
  await page.cliquer('.bascule[name=expression]');
  await chercher(page, '^aig.*(e');
  await compte(page, 'Expression incomplète');
  await chercher(page, '^aig.*(e)$');
  await compte(page, '1 sur 1');
  await page.recharger();
  assert.deepEqual(
    await page.evaluer('[...document.querySelectorAll(".bascule")].map((b) => b.ariaPressed)'), ['true', 'false', 'true'],
  );
});

essai('une expression qui n’en finirait pas s’arrête, et la page vit', async (page) => {
  await lancerUneLigne(page, 'clear; printf "a%.0s" {1..60}; echo b');
  await page.attendreLeTexte('/^a{60}b/m');
  await ouvrirLaRecherche(page);
  await page.cliquer('.bascule[name=expression]');
  await chercher(page, '^(a+)+$');
  await compte(page, 'Trop long à chercher');
  await chercher(page, 'a+b$');
  await compte(page, '1 sur 1');
});

essai('ce qui s’écrit pendant la recherche se compte, et la trouvaille choisie le reste', async (page) => {
  await lancerUneLigne(page, 'clear; seq 9990; seq -f "mot%g" 3; until [ -e la ]; do sleep .1; done; seq 300; seq -f "mot%g" 2; echo fi-$((1 + 1))');
  await page.attendreLeTexte('/^mot3/m');
  await ouvrirLaRecherche(page);
  await page.cliquer('.bascule[name=expression]');
  await chercher(page, '^mot\\d+$');
  await compte(page, '3 sur 3');
  await page.touche('Entrée');
  await compte(page, '2 sur 3');
  // Les plus anciennes lignes s’en vont : toutes les autres changent de rang.
  writeFileSync(join(page.maison.maison, 'la'), '');
  await page.attendreLeTexte('/^fi-2/m');
  await compte(page, '2 sur 5');
  await page.evaluer('document.querySelector(".recherche input").focus()');
  await page.touche('Maj+Entrée');
  await compte(page, '3 sur 5');
  await page.attendreLeTexte('/^mot3 *\\n1/m');
});

essai('la recherche dont le programme n’a pas pu se charger le redemande', async (page) => {
  await page.evaluer(`{
    const Vrai = Worker;
    let fois = 0;
    window.Worker = class extends Vrai { constructor(source, options) { super(fois++ < 2 ? '/absent.js' : source, options); } };
  }`);
  await lancerUneLigne(page, 'clear; printf "%s\\n" aiguille aiguilles');
  await page.attendreLeTexte('/^aiguille\\naiguilles\\n/m');
  await ouvrirLaRecherche(page);
  await chercherDUnTrait(page, 'aiguille');
  await compte(page, '2 sur 2');
});

essai('ce qui s’écrit pendant une recherche qui dure ne lui fait pas taire ce qu’elle a trouvé plus haut', async (page) => {
  await lancerUneLigne(page, 'clear; printf "aigui%s\\n" lle; seq 500; until [ -e la ]; do sleep .1; done; echo fi-$((1 + 1))');
  await page.attendreLeTexte('/^500/m');
  await page.evaluer(`{
    const envoyer = Worker.prototype.postMessage;
    window.retenus = [];
    Worker.prototype.postMessage = function (...quoi) {
      window.retenus.push(() => envoyer.apply(this, quoi));
    };
  }`);
  await ouvrirLaRecherche(page);
  await chercherDUnTrait(page, 'aiguille');
  const demandees = await page.evaluer('window.retenus.length');
  writeFileSync(join(page.maison.maison, 'la'), '');
  await page.attendreLeTexte('/^fi-2/m');
  await page.attendre(`window.retenus.length > ${demandees}`);
  await page.evaluer('window.retenus.at(-1)()');
  await page.attendreLeTexte('/^aiguille/m');
});
