import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { test } from 'node:test';
import { lancer, Page, preparerMaison } from './outils.mjs';

async function ouvrirUnePage(t) {
  const maison = await preparerMaison(t);
  const serveur = await lancer(t, maison);
  const jeton = readFileSync(maison.cheminJeton, 'utf8').trim();
  const rouvrir = async () => {
    const page = await Page.ouvrir(t, serveur.port, jeton);
    await page.attendre(() => page.terminaux.length > 0, 'la liste');
    return page;
  };
  return { page: await rouvrir(), rouvrir, maison };
}

async function ouvrirUnTerminal(page, taille = {}) {
  page.derniers.delete('ouvert');
  page.envoyer({ type: 'ouvrir', ...taille });
  await page.attendre(() => page.derniers.has('ouvert'), 'un terminal de plus');
  return page.derniers.get('ouvert').id;
}

test('un vrai interpréteur répond dans un vrai terminal, chez l’utilisateur', async (t) => {
  const { page, maison } = await ouvrirUnePage(t);
  assert.deepEqual(page.terminaux.map(({ nom }) => nom), ['Terminal 1']);
  const [{ id }] = page.terminaux;
  page.envoyer({ type: 'taille', id, colonnes: 111, lignes: 33 });
  page.envoyer({ type: 'saisie', id, texte: 'echo "<$TERM $COLORTERM $((40 + 2)) $(stty size) $PWD>"\r' });
  const [, vu] = await page.attendreLeTexte(id, /<(xterm[^>]+)>/);
  assert.equal(vu, `xterm-256color truecolor 42 33 111 ${maison.maison}`);
});

test('une page rechargée retrouve ses terminaux et leur sortie récente', async (t) => {
  const { page, rouvrir } = await ouvrirUnePage(t);
  const [{ id }] = page.terminaux;
  page.envoyer({ type: 'renommer', id, nom: '  Chantier\u0007 d’été ' });
  await page.attendre(() => page.terminaux[0].nom === 'Chantier  d’été', 'le nouveau nom');
  page.envoyer({ type: 'saisie', id, texte: 'echo avant-$((20 + 1)); jeu=gardé\r' });
  await page.attendreLeTexte(id, /avant-21/);
  await page.fermer();
  const seconde = await rouvrir();
  assert.deepEqual(seconde.terminaux.map(({ id: autre, nom }) => [autre, nom]), [[id, 'Chantier  d’été']]);
  await seconde.attendreLeTexte(id, /avant-21/);
  seconde.envoyer({ type: 'saisie', id, texte: 'echo "[$jeu]"\r' });
  await seconde.attendreLeTexte(id, /\[gardé\]/);
});

test('fermer le dernier terminal, ou le quitter, en ouvre un neuf', async (t) => {
  const { page } = await ouvrirUnePage(t);
  const [{ id: premier }] = page.terminaux;
  page.envoyer({ type: 'fermer', id: premier });
  await page.attendre(() => page.terminaux.length === 1 && page.terminaux[0].id !== premier, 'un terminal neuf');
  const [{ id: deuxieme }] = page.terminaux;
  page.envoyer({ type: 'saisie', id: deuxieme, texte: 'exit\r' });
  await page.attendre(() => page.terminaux.length === 1 && page.terminaux[0].id !== deuxieme, 'un autre encore');
});

test('l’onglet d’un interpréteur qui finit se ferme, les autres restent', async (t) => {
  const { page } = await ouvrirUnePage(t);
  const [{ id: premier }] = page.terminaux;
  const deuxieme = await ouvrirUnTerminal(page, { colonnes: 90, lignes: 30 });
  assert.deepEqual(page.terminaux[1], { id: deuxieme, nom: 'Terminal 2', colonnes: 90, lignes: 30 });
  page.envoyer({ type: 'saisie', id: premier, texte: 'exit\r' });
  await page.attendre(() => page.terminaux.length === 1, 'un seul terminal');
  assert.equal(page.terminaux[0].id, deuxieme);
});

test('une demande insensée ne coûte que la liaison, ou rien', async (t) => {
  const { page, rouvrir } = await ouvrirUnePage(t);
  const [{ id }] = page.terminaux;
  const insensees = [
    { type: 'inconnu' }, { type: 'saisie', id }, { type: 'saisie', id: 'personne', texte: 'x\r' }, { type: 'taille', id },
    { type: 'taille', id, colonnes: -1, lignes: 1e9 }, { type: 'renommer', id, nom: ' \n' }, { type: 'renommer', id, nom: 3 },
    { type: 'recu', id, nombre: -5 }, { type: 'fermer', id: null },
  ];
  for (const message of insensees) page.envoyer(message);
  page.envoyer('pas un message');
  assert.equal(await page.fin, 4400);
  const seconde = await rouvrir();
  assert.deepEqual(seconde.terminaux, page.terminaux);
});

test('un terminal bavard attend la page qui ne suit pas, sans gêner les autres', async (t) => {
  const { page } = await ouvrirUnePage(t);
  const [{ id: bavard }] = page.terminaux;
  const autre = await ouvrirUnTerminal(page);
  page.accuse = false;
  page.envoyer({ type: 'saisie', id: bavard, texte: 'head -c 4000000 /dev/zero | tr "\\0" a; echo fin-$((1 + 1))\r' });
  await page.attendre(() => page.texte(bavard).length > 256 * 1024, 'la borne atteinte');
  page.envoyer({ type: 'saisie', id: autre, texte: 'echo libre-$((2 + 2))\r' });
  await page.attendreLeTexte(autre, /libre-4/);
  assert.ok(page.texte(bavard).length < 1024 * 1024);
  page.rattraper();
  await page.attendre(() => page.texte(bavard).includes('fin-2'), 'la fin de la sortie');
  assert.ok(page.texte(bavard).length > 4_000_000);
});

test('un grand collage arrive entier', async (t) => {
  const { page } = await ouvrirUnePage(t);
  const [{ id }] = page.terminaux;
  page.envoyer({ type: 'saisie', id, texte: 'stty -echo; echo pret-$((1 + 1)); wc -c\r' });
  await page.attendreLeTexte(id, /pret-2/);
  const ligne = `${'é'.repeat(499)}\n`;
  for (let i = 0; i < 20; i += 1) page.envoyer({ type: 'saisie', id, texte: ligne.repeat(20) });
  page.envoyer({ type: 'saisie', id, texte: '\u0004' });
  await page.attendreLeTexte(id, new RegExp(`\\b${400 * 999}\\b`));
});
