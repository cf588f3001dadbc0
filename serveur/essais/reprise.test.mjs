import assert from 'node:assert/strict';
import { createServer } from 'node:http';
import { after, before, test } from 'node:test';
import { WebSocketServer } from 'ws';
import { Navigateur, PageVue, sansNavigateur } from './navigateur.mjs';
import { arreter, lancer, unEvenement } from './outils.mjs';

const SANS_ATTENDRE = 'import("/liaison.js").then(({ renouerMaintenant }) => renouerMaintenant())';
let navigateur;

before(async () => sansNavigateur || (navigateur = await Navigateur.lancer()));
after(() => navigateur?.fermer());

test('une page qui renoue ne donne son jeton qu’à qui le connaît déjà', { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur, { hote: '127.0.0.1' });
  await arreter(page.serveur);
  // Un inconnu prend le port pendant la coupure, et répond comme il peut.
  for (const preuve of ['0'.repeat(64), null, 3]) {
    const inconnu = createServer().listen(page.serveur.port, '127.0.0.1');
    const recus = [];
    const portier = new WebSocketServer({ server: inconnu });
    const coupee = new Promise((suite) => portier.on('connection', (prise) => {
      prise.on('message', (donnees) => {
        recus.push(JSON.parse(donnees));
        prise.send(JSON.stringify({ type: 'preuve', preuve }));
      });
      prise.on('close', suite);
    }));
    await unEvenement(inconnu, 'listening');
    await page.evaluer(SANS_ATTENDRE);
    await coupee;
    assert.deepEqual(recus.map(({ type }) => type), ['defi']);
    for (const prise of portier.clients) prise.terminate();
    inconnu.close();
    await unEvenement(inconnu, 'close');
  }
  await lancer(t, page.maison);
  await page.evaluer(SANS_ATTENDRE);
  await page.attendreLeTexte('/fin de la session précédente/');
  assert.deepEqual(page.fautes, []);
});

test('une coupure compte à rebours, de plus en plus long, et se répare sans attendre si on le veut', { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur);
  const vue = 'document.querySelector(".coupure:not([hidden])")';
  const attendreLeCompte = (secondes) => page.attendre(`${vue}?.innerText.includes("Nouvel essai dans ${secondes} s…")`);
  const retrouver = async () => {
    await page.attendre('document.querySelector(".coupure").hidden');
    await page.attendreLeTexte('/session précédente ──[^]*\\$ /');
  };
  await arreter(page.serveur);
  for (const secondes of [2, 1, 4]) await attendreLeCompte(secondes);
  assert.match(await page.evaluer(`${vue}.innerText`), /^Connexion au serveur perdue\./);
  const second = await lancer(t, page.maison);
  await page.cliquer('.coupure button');
  await retrouver();
  await arreter(second);
  await attendreLeCompte(2);
  await lancer(t, page.maison);
  await page.cliquer('.panneau .xterm-screen');
  await page.touche('Entrée');
  await retrouver();
  assert.deepEqual(page.fautes, []);
});
