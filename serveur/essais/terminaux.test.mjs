import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { attendreLeFichier, lancer, Page, preparerMaison } from './outils.mjs';

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
  const { id, nom, colonnes, lignes } = page.terminaux[1];
  assert.deepEqual([id, nom, colonnes, lignes], [deuxieme, 'Terminal 2', 90, 30]);
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
    { type: 'recu', id, nombre: -5 }, { type: 'fermer', id: null }, { type: 'deplacer', id, rang: 7 }, { type: 'deplacer', id, rang: '0' },
    { type: 'accoler', id }, { type: 'accoler' },
    { type: 'repartir', id, chemin: 3, parts: {} }, { type: 'repartir', id, chemin: [null], parts: null },
  ];
  for (const message of insensees) page.envoyer(message);
  page.envoyer('pas un message');
  assert.equal(await page.fin, 4400);
  const seconde = await rouvrir();
  assert.deepEqual(seconde.terminaux, page.terminaux);
});

test('l’onglet suit le titre et le dossier, sauf quand l’utilisateur l’a nommé', async (t) => {
  const { page, maison } = await ouvrirUnePage(t);
  const [{ id }] = page.terminaux;
  const attendreLeNom = (nom) => page.attendre(() => page.terminaux[0].nom === nom, nom);
  page.envoyer({ type: 'saisie', id, texte: "printf '\\033]0;Éditeur\\a'\r" });
  await attendreLeNom('Éditeur');
  page.envoyer({ type: 'renommer', id, nom: 'À moi' });
  await attendreLeNom('À moi');
  page.envoyer({ type: 'saisie', id, texte: "printf '\\033]2;Autre\\033\\\\'; mkdir -p 'a b' c; cd 'a b'\r" });
  await page.attendre(() => page.terminaux[0].dossier === `${maison.maison}/a b`, 'le dossier de l’interpréteur');
  assert.equal(page.terminaux[0].nom, 'À moi');
  page.envoyer({ type: 'renommer', id, nom: '' });
  await attendreLeNom('Autre');

  page.envoyer({ type: 'saisie', id, texte: `printf '\\033]7;file://%s/tmp\\a' "$(hostname)"\r` });
  await page.attendre(() => page.terminaux[0].dossier === '/tmp', 'le dossier annoncé');
  page.envoyer({ type: 'saisie', id, texte: 'cd ../c\r' });
  await page.attendre(() => page.terminaux[0].dossier === `${maison.maison}/c`, 'le dossier plus récent');
  const neuf = await ouvrirUnTerminal(page, { depuis: id });
  page.envoyer({ type: 'saisie', id: neuf, texte: 'echo "<$PWD>"\r' });
  await page.attendreLeTexte(neuf, new RegExp(`<${maison.maison}/c>`));
});

test('fermer demande d’abord quand un programme tourne', async (t) => {
  const { page } = await ouvrirUnePage(t);
  const [{ id: premier }] = page.terminaux;
  const occupe = await ouvrirUnTerminal(page);
  page.envoyer({ type: 'saisie', id: occupe, texte: 'sh -c "echo parti-$((1 + 1)); sleep 600; :"\r' });
  await page.attendreLeTexte(occupe, /parti-2/);
  page.envoyer({ type: 'fermer', id: occupe });
  await page.attendre(() => page.derniers.has('occupe'), 'la question');
  assert.deepEqual(page.derniers.get('occupe'), { type: 'occupe', id: occupe, programme: 'sh' });
  assert.equal(page.terminaux.length, 2);
  page.envoyer({ type: 'fermer', id: occupe, certain: true });
  await page.attendre(() => page.terminaux.length === 1, 'la fermeture');
  page.envoyer({ type: 'saisie', id: premier, texte: 'sleep 600 & echo fond-$((1 + 1))\r' });
  await page.attendreLeTexte(premier, /fond-2/);
  page.envoyer({ type: 'fermer', id: premier });
  await page.attendre(() => ![undefined, premier].includes(page.terminaux[0]?.id), 'la fermeture sans question');
});

test('les terminaux se déplacent, et se groupent côte à côte', async (t) => {
  const { page } = await ouvrirUnePage(t);
  const [{ id: a }] = page.terminaux;
  const [b, c] = [await ouvrirUnTerminal(page), await ouvrirUnTerminal(page)];
  // Les groupes, du premier onglet au dernier : « ab c » montre deux terminaux, puis un.
  const noms = new Map([[a, 'a'], [b, 'b'], [c, 'c']]);
  const dessin = () => page.terminaux.map(({ id, groupe }, rang) => (
    (rang > 0 && page.terminaux[rang - 1].groupe !== groupe ? ' ' : '') + (noms.get(id) ?? 'd')
  )).join('');
  const attendreLeDessin = (voulu) => page.attendre(() => dessin() === voulu, voulu);
  await attendreLeDessin('a b c');
  page.envoyer({ type: 'deplacer', id: c, rang: 0 });
  await attendreLeDessin('c a b');
  page.envoyer({ type: 'accoler', id: a });
  await attendreLeDessin('ca b');
  page.envoyer({ type: 'deplacer', id: a, rang: 0 });
  await attendreLeDessin('ac b');
  page.envoyer({ type: 'deplacer', id: b, rang: 1 });
  await attendreLeDessin('abc');
  page.envoyer({ type: 'deplacer', id: a, rang: 2 });
  await attendreLeDessin('bca');
  page.envoyer({ type: 'accoler', id: c });
  await attendreLeDessin('b c a');
  page.envoyer({ type: 'ouvrir', depuis: b, aCote: true });
  await attendreLeDessin('bd c a');
});

test('un terminal bavard attend la page qui ne suit pas, sans gêner les autres', async (t) => {
  const { page } = await ouvrirUnePage(t);
  const [{ id: bavard }] = page.terminaux;
  const autre = await ouvrirUnTerminal(page);
  page.accuse = false;
  page.envoyer({ type: 'saisie', id: bavard, texte: 'head -c 4000000 /dev/zero | tr "\\0" a; echo fin-$((1 + 1))\r' });
  await page.attendre(() => page.texte(bavard).length > 32 * 1024, 'la borne atteinte');
  page.envoyer({ type: 'saisie', id: autre, texte: 'echo libre-$((2 + 2))\r' });
  await page.attendreLeTexte(autre, /libre-4/);
  assert.ok(page.texte(bavard).length < 1024 * 1024);
  page.rattraper();
  await page.attendre(() => page.texte(bavard).includes('fin-2'), 'la fin de la sortie');
  assert.ok(page.texte(bavard).length > 4_000_000);
});

test('une inondation de lignes n’attend pas la page, qui n’en lit que ce qu’elle garde', async (t) => {
  const { page, maison } = await ouvrirUnePage(t);
  const [{ id }] = page.terminaux;
  const fini = join(maison.maison, 'fini');
  page.lignesGardees = 1000;
  page.envoyer({ type: 'saisie', id, texte: `read -p pret-$((1 + 1)); seq 500000; echo oui > '${fini}'\r` });
  await page.attendreLeTexte(id, /pret-2/);
  // Elle ne lit rien de plus, et pourtant tout s’imprime.
  page.accuse = false;
  page.envoyer({ type: 'saisie', id, texte: '\r' });
  await attendreLeFichier(fini, (texte) => texte === 'oui\n');
  assert.ok(page.recus < 500_000, `${page.recus}`);
  page.rattraper();
  await page.attendreLeTexte(id, /\n500000\r\n/);
  assert.ok(page.recus < 500_000, `${page.recus}`);
  const fin = Array.from({ length: 900 }, (_, i) => `${499_101 + i}\r\n`).join('');
  assert.ok(page.texte(id).includes(fin));
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
