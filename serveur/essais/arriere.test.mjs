import assert from 'node:assert/strict';
import { test } from 'node:test';
import headless from '@xterm/headless';
import { Arriere } from '../lib/Arriere.mjs';
import { compterLesLignesGardees } from '../page/lignesGardees.js';

const OCTETS = 1_500_000;
const HISTORIQUE = 300;

function ouvrirUnTerminal() {
  const terminal = new headless.Terminal({ cols: 60, rows: 12, scrollback: HISTORIQUE, allowProposedApi: true });
  const vu = { terminal, sonneries: 0, reponses: '' };
  terminal.onBell(() => (vu.sonneries += 1));
  terminal.onData((texte) => (vu.reponses += texte));
  vu.lire = (texte) => new Promise((suite) => terminal.write(texte, suite));
  return vu;
}

const decrireLaCase = (c) => [c.getChars(), c.getWidth(), c.getFgColorMode(), c.getFgColor(), c.getBgColorMode(), c.getBgColor(),
  c.isBold(), c.isDim(), c.isItalic(), c.isUnderline(), c.isInverse(), c.isStrikethrough(), c.isOverline(), c.isBlink()].join();

function decrireLEcran(tampon, colonnes) {
  return Array.from({ length: tampon.length }, (_, rang) => {
    const ligne = tampon.getLine(rang);
    return `${ligne.isWrapped} ${Array.from({ length: colonnes }, (_, x) => decrireLaCase(ligne.getCell(x))).join('|')}`;
  });
}

// Tout ce qui peut se voir : les deux écrans, l’historique, le curseur, les modes ; et ce que dit la suite d’un texte écrit.
async function decrire({ terminal, sonneries, reponses, lire }) {
  await lire('après \x1b7');
  const { cols, modes, buffer: { active, normal, alternate } } = terminal;
  const { scrollTop, scrollBottom } = terminal._core.buffer;
  return {
    sonneries, reponses, modes: { ...modes }, marges: [scrollTop, scrollBottom],
    curseur: [active.cursorX, active.cursorY, active.baseY, active.viewportY, active.type],
    normal: decrireLEcran(normal, cols),
    remplacement: decrireLEcran(alternate, cols),
  };
}

// Un hasard qui se rejoue.
function semer(graine) {
  let etat = graine;
  return (borne) => {
    etat = (etat * 1664525 + 1013904223) % 2 ** 32;
    return Math.floor((etat / 2 ** 32) * borne);
  };
}

// Une page lente : le flux vient par morceaux coupés n’importe où, et elle n’en lit un que de temps en temps.
async function lireParArriere(flux, graine, vu) {
  const hasard = semer(graine);
  const recus = [];
  const arriere = new Arriere((_, texte) => recus.push(texte));
  let nombre = 0;
  const lireLePremier = async () => {
    const texte = recus.shift();
    nombre += texte.length;
    await vu.lire(texte);
    arriere.lu(texte.length, compterLesLignesGardees(vu.terminal));
  };
  for (let debut = 0; debut < flux.length;) {
    const longueur = 1 + hasard(20_000);
    arriere.ajouter(flux.slice(debut, debut + longueur));
    debut += longueur;
    if (hasard(6) === 0 && recus.length > 0) await lireLePremier();
  }
  while (recus.length > 0) await lireLePremier();
  assert.equal(arriere.enAttente, 0);
  return nombre;
}

function repeter(faire) {
  let texte = '';
  for (let i = 0; texte.length < OCTETS; i += 1) texte += faire(i);
  return texte;
}

const couleurs = (i) => `\x1b[3${i % 8}mligne ${i}\x1b[0m et \x1b[1;4${i % 7}mdu gras sur fond\x1b[K\x1b[m fin\r\n`;
const sansRemise = (i) => `\x1b[38;5;${i % 256}mx${i}\x1b[4${i % 8}my\x1b[${i % 2 ? 1 : 22}mz\x1b[38;2;${i % 250};3;4mw\r\n`;
const larges = (i) => `日本語 ${i} é e\u0301 👩‍👩‍👧 한글 ${'漢'.repeat(i % 50)}\r\n`;
const longues = (i) => `${i} ${'une longue ligne qui se replie '.repeat(i % 6)}\r\n`;
const tableaux = (i) => `a\tb${i}\t\tc\b\bd\rX\r\n`;
const avance = (i) => `${couleurs(i)}  12 %\r  ${i % 100} %\x1b[K\r`;
// Chacune laisse voir la fin de la précédente, là où l’écran ne défile pas.
const raccourcies = Array.from({ length: 60_000 }, (_, i) => `${String.fromCharCode(97 + (i % 26)).repeat(50 - i / 1200)}\r\n`).join('');
const FLUX = {
  'un mot par ligne': repeter(() => 'y\r\n'),
  'des couleurs': repeter(couleurs),
  'des couleurs jamais remises à zéro': repeter(sansRemise),
  'des caractères larges, composés, hors du premier plan': repeter(larges),
  'des lignes qui se replient': repeter(longues),
  'des tabulations, des reculs, des récritures': repeter(tableaux),
  'une barre d’avancement': repeter(avance),
  'une couleur laissée en vigueur': `${repeter(couleurs).slice(0, OCTETS / 2)}\r\n\x1b[3;35m${repeter(longues)}`,
  'une couleur revenue': `${repeter(longues).slice(0, OCTETS / 2)}\r\n\x1b[31m\x1b[4m\x1b[32m\x1b[31m${repeter(longues)}`,
  'l’écran de remplacement': `avant\r\n\x1b[?1049h${repeter(couleurs)}`,
  'l’écran de remplacement, puis le retour': `avant\r\n\x1b[?1049h${repeter(couleurs)}\x1b[?1049l`,
  'des marges': `avant\r\n\x1b[3;9r\x1b[12;1Hbas\x1b[5;1H${repeter(longues)}`,
  'des marges, le curseur dehors': `avant\r\n\x1b[3;9r\x1b[12;1H${raccourcies}`,
  'des marges posées, puis ôtées': `\x1b[3;9r${repeter(couleurs).slice(0, OCTETS / 2)}\x1b[r${repeter(longues)}`,
  'des modes et un jeu de caractères': `\x1b[?25l\x1b[?2004h\x1b[?7l\x1b[4h\x1b)0\x0e${repeter(longues)}`,
  'un jeu de caractères, au milieu': `${repeter(couleurs).slice(0, OCTETS / 2)}\x1b(0${repeter(couleurs)}`,
  'un mode effacé au milieu': `\x1b[?7l${repeter(longues)}\x1b[?7h${repeter(longues)}`,
  'une sonnerie par mille lignes': repeter((i) => couleurs(i) + (i % 1000 ? '' : '\x07')),
  'des questions qui attendent réponse': repeter((i) => longues(i) + (i % 3000 ? '' : '\x1b[6n\x1b[c')),
  'des titres et des adresses': repeter((i) => `${couleurs(i)}${i % 500 ? '' : `\x1b]0;titre ${i}\x07\x1b]8;;http://x/${i}\x1b\\lien`}`),
  'une adresse laissée ouverte': `\x1b]8;;http://x/\x1b\\${repeter(couleurs)}`,
  'des sauts de ligne sans retour': repeter((i) => `bas ${i}\n${i % 40 ? '' : '\r'}`),
  'des commandes en un seul caractère': `${repeter(longues)}\x9b31m${repeter(longues)}\x9d0;titre\x9c${repeter(couleurs)}`,
  'un programme plein écran': repeter((i) => `\x1b[${1 + (i % 12)};${1 + (i % 50)}H\x1b[3${i % 8}m${i}\x1b[J`),
  'une seule ligne sans fin': 'x'.repeat(OCTETS),
};
const ELAGUES = Object.keys(FLUX).slice(0, 10);

for (const [nom, flux] of Object.entries(FLUX)) {
  test(`une page lente finit au même point que celle qui a tout lu : ${nom}`, async () => {
    const entier = ouvrirUnTerminal();
    await entier.lire(flux);
    const voulu = await decrire(entier);
    for (const graine of [1, 2, 3]) {
      const page = ouvrirUnTerminal();
      const lus = await lireParArriere(flux, graine, page);
      assert.deepEqual(await decrire(page), voulu, `graine ${graine}`);
      if (ELAGUES.includes(nom)) assert.ok(lus < flux.length * 0.7, `${lus} sur ${flux.length}`);
    }
  });
}

// La suite vient avant que la page ait lu le début, ou qu’elle ait pu dire ce qu’il a changé chez elle.
for (const [nom, debut, suite] of [
  ['une couleur coupée en deux', `${couleurs(1).repeat(10_000)}\x1b[${'0000;'.repeat(20)}`, `3;31m${longues(3).repeat(10_000)}`],
  ['des marges encore en route', '\x1b[3;9r\x1b[12;1H', raccourcies],
  ['des marges qui s’en vont', '\x1b[3;9r\x1b[12;1H', `${raccourcies}\x1b[r${raccourcies}`],
]) {
  test(`ce qui est en route compte : ${nom}`, async () => {
    const [entier, page] = [ouvrirUnTerminal(), ouvrirUnTerminal()];
    await entier.lire(`départ${debut}${suite}`);
    const recus = [];
    const arriere = new Arriere((_, texte) => recus.push(texte));
    const lireLePremier = async () => {
      const texte = recus.shift();
      await page.lire(texte);
      arriere.lu(texte.length, compterLesLignesGardees(page.terminal));
    };
    arriere.ajouter('départ');
    await lireLePremier();
    arriere.ajouter(debut);
    for (let i = 0; i < suite.length; i += 10_000) arriere.ajouter(suite.slice(i, i + 10_000));
    while (recus.length > 0) await lireLePremier();
    assert.deepEqual(await decrire(page), await decrire(entier));
  });
}

test('qui relit plus haut lit tout, et garde sa place', async () => {
  const vu = ouvrirUnTerminal();
  await vu.lire(couleurs(1).repeat(100));
  vu.terminal.scrollLines(-40);
  const flux = repeter(couleurs);
  assert.equal(await lireParArriere(flux, 1, vu), flux.length);
});

test('une page qui ne dit pas ce qu’elle garde lit tout, et retient le terminal', () => {
  const recus = [];
  const arriere = new Arriere((_, texte) => recus.push(texte));
  const flux = repeter(couleurs);
  arriere.ajouter('départ');
  for (let i = 0; i < 3; i += 1) arriere.ajouter(flux);
  assert.equal(arriere.retard, 6 + 3 * flux.length);
  for (let lu = recus.shift(); lu; lu = recus.shift()) arriere.lu(lu.length, null);
  assert.equal(arriere.retard, 0);
});

test('l’attente reste bornée, ou retient le terminal', () => {
  for (const flux of Object.values(FLUX)) {
    const arriere = new Arriere(() => {});
    arriere.ajouter('départ');
    arriere.lu(6, HISTORIQUE);
    arriere.ajouter('\r\n'.repeat(20_000));
    let plusHaut = 0;
    for (let tour = 0; tour < 10 && arriere.retard < 256 * 1024; tour += 1) {
      for (let debut = 0; debut < flux.length && arriere.retard < 256 * 1024; debut += 50_000) {
        arriere.ajouter(flux.slice(debut, debut + 50_000));
        plusHaut = Math.max(plusHaut, arriere.enAttente);
      }
    }
    assert.ok(plusHaut < 5_000_000, `${plusHaut}`);
  }
});
