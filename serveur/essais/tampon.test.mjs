import assert from 'node:assert/strict';
import { test } from 'node:test';
import { Tampon } from '../lib/Tampon.mjs';

test('le tampon garde tout tant que c’est court', () => {
  const tampon = new Tampon();
  tampon.ajouter('a\r\n');
  tampon.ajouter('b');
  assert.equal(tampon.rejouer(), 'a\r\nb');
});

test('le tampon reste borné et recommence au début d’une ligne', () => {
  const tampon = new Tampon();
  for (let i = 0; i < 80_000; i += 1) tampon.ajouter(`ligne ${i}\r\n`);
  const texte = tampon.rejouer();
  assert.ok(texte.length <= 550_000 && texte.length > 400_000);
  assert.match(texte, /^ligne \d+\r\n/);
  assert.ok(texte.endsWith('ligne 79999\r\n'));
});

test('sans ligne ni séquence où couper, le tampon se borne quand même', () => {
  const tampon = new Tampon();
  for (let i = 0; i < 900; i += 1) tampon.ajouter('x'.repeat(1000));
  assert.ok(tampon.rejouer().length <= 550_000);
});

test('les modes posés dans la partie oubliée sont rejoués d’abord', () => {
  const tampon = new Tampon();
  tampon.ajouter('\x1b[?1049h\x1b[?1000;1006h\x1b[?25l');
  for (let i = 0; i < 600; i += 1) tampon.ajouter(`\x1b[1;1H${'y'.repeat(1000)}`);
  tampon.ajouter('\x1b[?25h');
  const texte = tampon.rejouer();
  assert.ok(texte.startsWith('\x1b[?1049h\x1b[?1000h\x1b[?1006h\x1b[?25l\x1b[1;1Hy'));
  assert.ok(texte.endsWith('\x1b[?25h'));
});

test('la fin seule se rejoue avec les modes de tout ce qui précède', () => {
  const tampon = new Tampon();
  tampon.ajouter('\x1b[?1049hlongtemps\r\navant\r\nla fin');
  assert.equal(tampon.rejouer({ caracteres: 10 }), '\x1b[?1049hla fin');
  assert.equal(tampon.rejouer({ lignes: 2 }), '\x1b[?1049havant\r\nla fin');
  assert.equal(tampon.rejouer(), '\x1b[?1049hlongtemps\r\navant\r\nla fin');
});
