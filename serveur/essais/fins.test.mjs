import assert from 'node:assert/strict';
import { test } from 'node:test';
import { direLaFin } from '../page/fins.js';

test('une fin dit la commande, son statut et sa durée', () => {
  const phrases = [
    ['make', 123_900, 0, 'make a fini en 2 min 3 s'], ['make', 12_400, 2, 'make a échoué (2) après 12 s'], ['', 10_000, null, 'La commande a fini en 10 s'],
    ['a', 59_999, 0, 'a a fini en 59 s'], ['a', 60_000, 0, 'a a fini en 1 min 0 s'], ['a', 3_840_000, 130, 'a a échoué (130) après 1 h 4 min'],
  ];
  for (const [commande, duree, statut, phrase] of phrases) assert.equal(direLaFin({ commande, duree, statut }), phrase);
});
