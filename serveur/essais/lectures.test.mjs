import assert from 'node:assert/strict';
import { test } from 'node:test';
import { Lectures } from '../page/lectures.js';

// Chaque lecture note son nom et reste en suspens jusqu’à ce que l’essai la finisse.
function preparer() {
  const lectures = new Lectures();
  const lues = [];
  const finir = {};
  const ajouter = (vue, nom) => lectures.ajouter(vue, (quandLu) => {
    lues.push(nom);
    finir[nom] = quandLu;
  });
  return { lectures, lues, finir, ajouter };
}

test('une lecture à la fois, dans l’ordre d’arrivée', () => {
  const { lues, finir, ajouter } = preparer();
  for (const nom of ['a1', 'b1', 'a2']) ajouter(nom[0], nom);
  assert.deepEqual(lues, ['a1']);
  finir.a1();
  assert.deepEqual(lues, ['a1', 'b1']);
  finir.a1();
  assert.deepEqual(lues, ['a1', 'b1']);
  finir.b1();
  finir.a2();
  ajouter('c', 'c1');
  assert.deepEqual(lues, ['a1', 'b1', 'a2', 'c1']);
});

test('une vue qui se montre rattrape tout de suite, dans son ordre', () => {
  const { lectures, lues, finir, ajouter } = preparer();
  for (const nom of ['a1', 'b1', 'a2', 'b2', 'b3']) ajouter(nom[0], nom);
  lectures.rattraper('b');
  assert.deepEqual(lues, ['a1', 'b1', 'b2', 'b3']);
  finir.a1();
  assert.deepEqual(lues.slice(4), ['a2']);
});

test('une vue retirée ne retient pas les autres', () => {
  const { lectures, lues, ajouter } = preparer();
  for (const nom of ['a1', 'a2', 'b1']) ajouter(nom[0], nom);
  lectures.oublier('a');
  assert.deepEqual(lues, ['a1', 'b1']);
});
