import assert from 'node:assert/strict';
import { test } from 'node:test';
import { lireLesDernieresLignes } from '../lib/dernieresLignes.mjs';

const lire = (sortie) => lireLesDernieresLignes(sortie, { colonnes: 20, lignes: 5 });
// Un retour en arrière ne montre rien de plus, mais demande un vrai terminal.
const parUnTerminal = (sortie) => lire(`${sortie}\x1b[1D`);

test('un texte simple se lit comme le ferait un terminal', async () => {
  const textes = [
    'un\r\ndeux\r\n\r\n  quatre  \r\n\r\n', 'a'.repeat(50) + '\r\nfin', '日本語のとても長い行がここで折り返す\r\nété', '\x1b[1;31mrouge\x1b[0m \x1b[4:3mondulé\x1b[m\r\nsuite',
    '\x1b]133;D;0\x07\x1b]133;A\x07$ \x1b]133;B\x1b\\ls\r\n\x1b]133;C;cmdline_url=ls\x07\x1b]9;4;1;50\x07fichier\r\n', '\x1b]0;titre\x07\x1b[?2004h$ ls\r\r\n\x1b[?2004lfichier\r\n', '', '\r\n\r\n', '\x1b]2;x\x1b\\fin \r\n',
    Array.from({ length: 400 }, (_, rang) => `ligne ${rang}`).join('\r\n'),
  ];
  for (const texte of textes) assert.deepEqual(await lire(texte), await parUnTerminal(texte), JSON.stringify(texte));
});

test('ce qui déplace le curseur se lit par un terminal', async () => {
  const lectures = [
    ['un\ndeux', ['un', '  deux']], ['faux\rvrai', ['vrai']], ['a\tb', ['a       b']], ['abc\b\bX', ['aXc']], ['un\r\n\x1b[1Adeux', ['deux']],
    ['\x1b[?1049hplein', null], ['a\x9b2Cb', ['a  b']],
  ];
  for (const [texte, voulues] of lectures) assert.deepEqual(await lire(texte), voulues, JSON.stringify(texte));
});
