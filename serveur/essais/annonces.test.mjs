import assert from 'node:assert/strict';
import { hostname } from 'node:os';
import { test } from 'node:test';
import { Annonces } from '../lib/Annonces.mjs';

function lire(...morceaux) {
  const dossiers = [];
  const annonces = new Annonces({ quandDossier: (chemin) => dossiers.push(chemin) });
  for (const morceau of morceaux) annonces.lire(morceau);
  return { titre: annonces.titre, dossiers };
}

test('le dernier titre annoncé l’emporte, quelle que soit sa fin', () => {
  assert.equal(lire('a\x1b]0;un\x07b\x1b]2;deux\x1b\\c').titre, 'deux');
  assert.equal(lire('\x1b]1;icône\x07\x1b]52;c;AAAA\x07').titre, '');
  assert.equal(lire('\x1b]0;un\x07', '\x1b]0;\x07').titre, '');
});

test('une annonce coupée n’importe où se lit quand même', () => {
  const texte = 'x\x1b[1m\x1b]0;été\x1b\\y\x1b]7;file:///tmp/a%20b\x07z';
  for (let i = 0; i <= texte.length; i += 1) {
    for (let j = i; j <= texte.length; j += 1) {
      assert.deepEqual(lire(texte.slice(0, i), texte.slice(i, j), texte.slice(j)), { titre: 'été', dossiers: ['/tmp/a b'] });
    }
  }
});

test('une annonce sans fin ne s’accumule pas', () => {
  const annonces = new Annonces();
  annonces.lire(`\x1b]0;${'x'.repeat(5000)}`);
  annonces.lire('tard\x07\x1b]0;court\x07');
  assert.equal(annonces.titre, 'court');
});

test('un dossier d’ici est cru, celui d’une autre machine non', () => {
  assert.deepEqual(lire(`\x1b]7;file://${hostname()}/tmp/%C3%A9\x07`).dossiers, ['/tmp/é']);
  assert.deepEqual(lire('\x1b]7;file://localhost/tmp\x07').dossiers, ['/tmp']);
  for (const adresse of ['file://ailleurs.test/tmp', 'http://localhost/tmp', '/tmp', 'file:///a%2Fb', '']) {
    assert.deepEqual(lire(`\x1b]7;${adresse}\x07`).dossiers, [], adresse);
  }
});
