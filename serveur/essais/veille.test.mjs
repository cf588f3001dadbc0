import assert from 'node:assert/strict';
import { test } from 'node:test';
import { Veille } from '../page/veille.js';

const BAVARDE = 1000;

test('une grosse sortie suivie de dix secondes de silence appelle une fois', () => {
  const veille = new Veille();
  veille.sortir(BAVARDE, 1000);
  assert.equal(veille.echeance, 11_000);
  veille.sortir(1, 4000);
  assert.equal(veille.echeance, 14_000);
  assert.equal(veille.annoncer(), true);
  assert.equal(veille.annoncer(), false);
  veille.sortir(BAVARDE, 30_000);
  assert.equal(veille.echeance, null);
});

test('une petite sortie n’appelle que si le programme a tourné un moment', () => {
  const veille = new Veille();
  veille.sortir(10, 0);
  assert.equal(veille.echeance, null);
  veille.saisir('make\r', 1000);
  veille.sortir(10, 10_999);
  assert.equal(veille.echeance, null);
  veille.sortir(10, 11_000);
  assert.equal(veille.echeance, 21_000);
});

test('ce qui s’affiche sous les yeux ne s’annonce pas, et regarder efface ce qui attendait', () => {
  const veille = new Veille();
  veille.saisir('make\r', 0);
  veille.regarder(true);
  veille.sortir(BAVARDE, 20_000);
  assert.equal(veille.echeance, null);
  assert.equal(veille.annoncer(), false);
  veille.regarder(false);
  assert.equal(veille.echeance, null);
  veille.sortir(BAVARDE, 21_000);
  assert.equal(veille.echeance, 31_000);
  veille.regarder(true);
  veille.regarder(false);
  assert.equal(veille.echeance, null);
});

test('l’utilisateur revenu, ou une nouvelle saisie, permet d’appeler de nouveau', () => {
  const veille = new Veille();
  assert.equal(veille.annoncer(), true);
  veille.regarder(true);
  veille.regarder(false);
  assert.equal(veille.annoncer(), true);
  veille.saisir('o\r', 0);
  assert.equal(veille.annoncer(), true);
});

test('l’écho de ce qui est tapé ne compte pas, la réponse à une ligne validée compte', () => {
  const veille = new Veille();
  veille.saisir('make\r', 0);
  veille.saisir('l', 60_000);
  veille.sortir(BAVARDE, 60_399);
  assert.equal(veille.echeance, null);
  veille.sortir(BAVARDE, 60_400);
  assert.equal(veille.echeance, 70_400);
  veille.saisir('s\r', 80_000);
  veille.sortir(BAVARDE, 80_000);
  assert.equal(veille.echeance, 90_000);
});

test('un programme qui se redessine à une autre taille ne dit rien de neuf', () => {
  const veille = new Veille();
  veille.redimensionner(0);
  veille.sortir(BAVARDE, 399);
  assert.equal(veille.echeance, null);
});

test('les réponses que le terminal donne d’office ne passent pas pour une saisie', () => {
  for (const reponse of ['\x1b[I', '\x1b[O', '\x1b[?1;2c', '\x1b[>0;276;0c', '\x1b[12;40R', '\x1b[0n', '\x1bP1$r0m\x1b\\', '\x1b]11;rgb:0/0/0\x1b\\']) {
    const veille = new Veille();
    veille.annoncer();
    veille.saisir(reponse, 0);
    assert.equal(veille.annoncer(), false, JSON.stringify(reponse));
  }
  for (const touche of ['a', '\x1b', '\x1b[A', '\x1bOP', '\x1bf', '\x03']) {
    const veille = new Veille();
    veille.annoncer();
    veille.saisir(touche, 0);
    assert.equal(veille.annoncer(), true, JSON.stringify(touche));
  }
});

test('ce qui dit chaque fois autre chose appelle chaque fois, mais six fois par minute', () => {
  const veille = new Veille();
  const heures = [0, 1000, 2000, 3000, 4000, 5000, 6000, 59_999, 60_000, 60_500, 61_000];
  assert.deepEqual(heures.map((heure) => veille.appeler(heure)), [true, true, true, true, true, true, false, false, true, false, true]);
  assert.equal(veille.annoncer(200_000), false, 'après un message, le silence ou la sonnerie n’apprend rien');
});

test('regardé, un terminal n’appelle pas, et ce qu’il a dit ne compte pas', () => {
  const veille = new Veille();
  veille.regarder(true);
  for (let i = 0; i < 10; i += 1) assert.equal(veille.appeler(0), false);
  veille.regarder(false);
  assert.equal(veille.appeler(0), true);
});
