import assert from 'node:assert/strict';
import { readFileSync, statSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { arreter, lancer, lancerAvecUnePage, Page, preparerMaison } from './outils.mjs';

const choisir = async (page, chemin) => {
  page.derniers.delete('interpreteurs');
  page.envoyer({ type: 'interpreteur', chemin });
  await page.attendre(() => page.derniers.has('interpreteurs'), 'la réponse');
  return page.derniers.get('interpreteurs').choisi;
};

// Le programme qui tourne dans un terminal neuf, et ce qu’il croit être.
const ouvrir = async (page) => {
  page.derniers.delete('ouvert');
  page.envoyer({ type: 'ouvrir' });
  await page.attendre(() => page.derniers.has('ouvert'), 'un terminal de plus');
  return interroger(page, page.derniers.get('ouvert').id);
};
let questions = 0;
const interroger = async (page, id) => {
  questions += 1;
  page.envoyer({ type: 'saisie', id, texte: `echo "${questions}<$(readlink /proc/$$/exe) $SHELL>"\r` });
  return (await page.attendreLeTexte(id, new RegExp(`${questions}<(/[^>]*)>`)))[1];
};

test('l’interpréteur choisi sert aux prochains terminaux, et à ceux qui reviennent', async (t) => {
  const maison = await preparerMaison(t);
  const { page, serveur } = await lancerAvecUnePage(t, maison);
  const [{ id }] = page.terminaux;
  await page.attendre(() => page.derniers.has('interpreteurs'), 'le choix');
  const { permis, choisi } = page.derniers.get('interpreteurs');
  assert.equal(choisi, null);
  assert.equal(new Set(permis.map((chemin) => chemin.replace(/^\/usr/, ''))).size, permis.length);
  const dash = permis.find((chemin) => chemin.endsWith('/dash'));
  assert.ok(permis.every((chemin) => readFileSync('/etc/shells', 'utf8').split('\n').includes(chemin)));
  assert.match(await ouvrir(page), /bash \/bin\/bash$/);
  assert.equal(await choisir(page, dash), dash);
  assert.match(await ouvrir(page), new RegExp(`dash ${dash}$`));
  assert.match(await interroger(page, id), /bash \/bin\/bash$/);
  const fichier = join(maison.cache, 'keltrove-interpreteur');
  assert.equal(statSync(fichier).mode & 0o777, 0o600);
  await arreter(serveur);
  const second = await lancer(t, maison);
  const revenue = await Page.ouvrir(t, second.port, readFileSync(maison.cheminJeton, 'utf8').trim());
  await revenue.attendre(() => revenue.derniers.has('interpreteurs') && revenue.terminaux.length > 0, 'la liste');
  assert.equal(revenue.derniers.get('interpreteurs').choisi, dash);
  assert.match(await interroger(revenue, id), /dash/);
  assert.equal(await choisir(revenue, null), null);
  assert.match(await ouvrir(revenue), /bash/);
});

test('rien d’autre que ce que /etc/shells permet ne se choisit, ni par la page, ni par le fichier', async (t) => {
  const maison = await preparerMaison(t);
  const { page } = await lancerAvecUnePage(t, maison);
  for (const chemin of ['/usr/bin/python3', 'bash', '', '/bin/bash\n', ['/bin/dash'], 3, { a: 1 }, undefined]) assert.equal(await choisir(page, chemin), null);
});

for (const contenu of ['/usr/bin/python3\n', '../../bin/dash', '\0']) {
  test(`un choix gardé de travers (${JSON.stringify(contenu)}) est celui du compte`, async (t) => {
    const maison = await preparerMaison(t);
    writeFileSync(join(maison.cache, 'keltrove-interpreteur'), contenu);
    const { page } = await lancerAvecUnePage(t, maison);
    assert.match(await ouvrir(page), /bash/);
  });
}
