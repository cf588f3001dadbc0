import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { after, before, test } from 'node:test';
import unicode11 from '@xterm/addon-unicode11';
import { lireLesDernieresLignes } from '../lib/dernieresLignes.mjs';
import { Tampon } from '../lib/Tampon.mjs';
import { compterLesLargeurs } from '../page/largeurs.js';
import { Navigateur, PageVue, sansNavigateur } from './navigateur.mjs';

let navigateur;

before(async () => sansNavigateur || (navigateur = await Navigateur.lancer()));
after(() => navigateur?.fermer());

// Un emoji d’Unicode 14, un drapeau, un cœur coloré, une famille jointe, un é en deux signes, une syllabe en trois.
const MELANGE = '🫠 🇫🇷 ❤️ 👨‍👩‍👧 e\u0301 \u1112\u1161\u11ab';

test('les largeurs sont celles que compte le système', () => {
  let version;
  compterLesLargeurs({ unicode: { register: (neuve) => (version = neuve) } }, unicode11.Unicode11Addon);
  const signes = [...MELANGE, ...'éß日本語한🎉🥲🫶', '\u3248', '\u4dc0', '\u06dd', '\u0899'];
  const programme = 'import ctypes, locale, sys; locale.setlocale(locale.LC_ALL, "C.UTF-8"); print(*[ctypes.CDLL(None).wcwidth(int(a)) for a in sys.argv[1:]])';
  const points = signes.map((signe) => String(signe.codePointAt(0)));
  const voulues = execFileSync('/usr/bin/python3', ['-c', programme, ...points], { encoding: 'utf8' }).trim().split(' ').map(Number);
  assert.deepEqual(points.map((point) => version.wcwidth(Number(point))), voulues);
});

test('le serveur qui relit compte de même', async () => {
  const lues = await lireLesDernieresLignes(`${MELANGE}|\x1b[s\r\x1b[5C!\x1b[u`, { colonnes: 40, lignes: 5 });
  assert.deepEqual(lues, [`${MELANGE.replace('🇷 ', '🇷!')}|`]);
});

test('bash garde la place de son curseur parmi les emoji', { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur);
  await page.touche('Ctrl+l');
  await page.ecrire(`: ${MELANGE} fin`);
  await page.attendreLeTexte('/ fin *$/m');
  // Au début de la ligne, puis après les emoji : ce que l’on tape s’insère là où on le voit.
  await page.touche('Ctrl+a');
  await page.ecrire('echo ');
  await page.touche('Ctrl+e');
  await page.ecrire('!');
  await page.attendreLeTexte('/fin!/');
  assert.equal((await page.texte()).trim(), `$ echo : ${MELANGE} fin!`);
  assert.deepEqual(page.fautes, []);
});

const GROUPES = '\\r\\n🇫🇷|👨‍👩‍👧|é|';

test('un programme qui le demande compte par groupes, et les autres par caractères', { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur);
  const demander = String.raw`printf '\e[?2027$p' >/dev/tty; IFS= read -rsd y vu </dev/tty; printf 'lu %q\n' "$vu"`;
  const colonnes = `(() => { const { terminal: { buffer: { active } } } = [...terminaux.vues.values()][0];
    return Array.from({ length: active.length }, (_, y) => active.getLine(y)).filter((ligne) => ligne.getCell(0).getChars().startsWith('🇫'))
      .map((ligne) => Array.from({ length: 30 }, (_, x) => x).filter((x) => ligne.getCell(x).getChars() === '|')); })()`;
  await page.ecrire(`clear; ${demander}; printf '\\e[?2027h${GROUPES}'; ${demander}; printf '\\e[?2027l${GROUPES}\\n'; echo fini`);
  await page.touche('Entrée');
  await page.attendreLeTexte('/^fini$/m');
  assert.match(await page.texte(), /2027;2\$[^]*2027;1\$/);
  assert.deepEqual(await page.evaluer(colonnes), [[2, 5, 7], [2, 9, 11]]);
  assert.deepEqual(page.fautes, []);
});

test('le serveur qui relit groupe de même, et une page neuve aussi', async () => {
  const lues = await lireLesDernieresLignes('\x1b[?2027h👨‍👩‍👧|\x1b[4G!', { colonnes: 40, lignes: 5 });
  assert.deepEqual(lues, ['👨‍👩‍👧|!']);
  const tampon = new Tampon();
  tampon.ajouter('\x1b[?2027h');
  tampon.ajouter(`${'y'.repeat(100)}\n`.repeat(6000));
  assert.ok(tampon.rejouer().startsWith('\x1b[?2027h'));
});
