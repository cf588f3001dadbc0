import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { closeSync, mkdirSync, mkdtempSync, openSync, readdirSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { test } from 'node:test';
import { citer, citerTous } from '../page/citation.js';

const ORDINAIRES = [
  '/tmp/simple.txt', '/tmp/deux mots', '/tmp/é à ü œ', "/tmp/l'heure", "/'''", '/tmp/"dit"', '/a\\b', '/fin\\', "/a\\'b'\\\\'",
  '/$HOME', '/${HOME}', '/$(touch pwned)', '/`touch pwned`', '/!!', '/!echo', '/a\\!echo', "/'!echo", '/\\\\!!\\!!', '/*', '/?[a-z]',
  '/~', '/~root', '/-rf', '/--', '/emoji 🎉👩‍🚀', "/'; touch pwned; '", '/; touch pwned', '/a&b|c>d<e', '/(x)', '/{a,b}', '/#x', '/a #b',
  '/^a^b', '/=ls', '/x=y', '/%1', '/a%20b', '/a@b:c,d+e', '/  ', '/\u00a0', '/\u2028', "/$'\\x03'", '/\\x41', '/été/…’',
];
const COMMANDES = [
  '/a\nb', '/a\rtouch pwned\r', '/a\x1b[201~touch pwned', '/a\x03b', '/\x03\x03', '/\x0341', '/\x04', '/\x7f8', '/\x80', '/\x9b201~',
  "/'\n'", '/\\\n', '/$\n', '/!\n!', '/\t', '/\x01a\x16\x03', '/\u0085x', ...Array.from({ length: 31 }, (_, i) => `/c${String.fromCharCode(i + 1)}0`),
];

// Les octets que l’interpréteur comprend, mot par mot, et la preuve qu’il n’a rien fait d’autre.
function faireLire(t, commande, options, chemins, avant = '') {
  const dossier = mkdtempSync(join(tmpdir(), 'keltrove citation '));
  t.after(() => rmSync(dossier, { recursive: true, force: true }));
  const vide = join(dossier, 'vide');
  mkdirSync(vide);
  writeFileSync(join(dossier, 'lignes'), `${avant}printf '<%s>' ${citerTous(chemins)}\n`);
  const lignes = openSync(join(dossier, 'lignes'));
  const env = { PATH: process.env.PATH, HOME: dossier, LANG: 'C.UTF-8' };
  const { status, stdout, stderr } = spawnSync(commande, options, { stdio: [lignes, 'pipe', 'pipe'], cwd: vide, env });
  closeSync(lignes);
  assert.equal(stderr.toString(), '');
  assert.equal(status, 0);
  assert.equal(stdout.toString('latin1'), Buffer.from(chemins.map((chemin) => `<${chemin}>`).join('')).toString('latin1'));
  assert.deepEqual(readdirSync(vide), []);
}

const absent = (commande) => spawnSync(commande, ['-c', ':']).error && `${commande} n’est pas installé ici`;

for (const [commande, options, chemins, avant] of [
  ['bash', ['--norc', '--noprofile'], [...ORDINAIRES, ...COMMANDES], 'set -o history -o histexpand\necho pwned >/dev/null\n'],
  ['bash', ['--norc', '--noprofile'], [...ORDINAIRES, ...COMMANDES]],
  ['sh', [], ORDINAIRES],
  ['dash', [], ORDINAIRES],
  ['zsh', ['-f'], [...ORDINAIRES, ...COMMANDES], 'setopt banghist extendedglob rcquotes\n'],
  ['fish', ['--no-config'], ORDINAIRES],
]) {
  test(`${commande} relit chaque chemin tel quel, seul et parmi d’autres${avant ? ', même réglé autrement' : ''}`, { skip: absent(commande) }, (t) => {
    for (const chemin of chemins) faireLire(t, commande, options, [chemin], avant);
    faireLire(t, commande, options, chemins, avant);
  });
}

test('aucun caractère de commande ne sort brut', () => {
  for (const chemin of COMMANDES) assert.doesNotMatch(citer(chemin), /\p{Cc}/u);
});

test('un chemin simple reste lisible, un chemin vide reste un mot', () => {
  assert.equal(citerTous(['/home/moi/notes-2.txt', '/à côté']), "/home/moi/notes-2.txt '/à côté' ");
  assert.equal(citer("/l'an\\!"), "'/l'\\''an'\\\\\\!");
  assert.equal(citer(''), "''");
  assert.equal(citerTous([]), '');
});
