import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { existsSync, lstatSync, mkdirSync, readdirSync, readFileSync, readlinkSync, rmSync, statSync, symlinkSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { arreter, attendreLeFichier, demander, lancer, lancerAvecUnePage, Page, preparerMaison } from './outils.mjs';

const sansRoot = process.getuid() !== 0 && 'il faut être root';
const CARNET = (nombre) => JSON.stringify({
  version: 1,
  terminaux: Array.from({ length: nombre }, (_, rang) => ({ id: `t${rang}`, nom: `Nom ${rang}`, groupe: `g${rang}`, dossier: '/usr', lignes: [`ligne ${rang}`] })),
});

// Le jeton, quand il ne peut pas s’écrire, n’est que dans la page.
async function ouvrirParLaPage(t, serveur) {
  const { corps } = await demander(serveur.port, '/');
  const page = await Page.ouvrir(t, serveur.port, /content="([0-9a-f]{64})"/.exec(corps)[1]);
  await page.attendre(() => page.derniers.has('accueil'), 'l’accueil');
  return page;
}

for (const [quoi, poser] of Object.entries({
  'un tube': (chemin) => execFileSync('mkfifo', [chemin]),
  'un dossier': (chemin) => mkdirSync(chemin),
  // Le sien : celui du système, un essai raté l’abîmerait pour toute la machine.
  'un périphérique sans fin': (chemin) => {
    execFileSync('mknod', [`${chemin}.zero`, 'c', '1', '5']);
    symlinkSync(`${chemin}.zero`, chemin);
  },
})) {
  const skip = quoi.startsWith('un périph') && sansRoot;
  test(`${quoi} à la place du jeton, des réglages ou de la liste ne retient pas le démarrage`, { skip }, async (t) => {
    const maison = await preparerMaison(t);
    rmSync(join(maison.cache, 'keltrove.json'));
    for (const nom of ['keltrove.json', 'keltrove-jeton', 'keltrove-carnet.json']) poser(join(maison.cache, nom));
    const serveur = await lancer(t, maison);
    assert.ok(serveur.port > 0, serveur.sortie);
    const page = await ouvrirParLaPage(t, serveur);
    const [{ id }] = page.terminaux;
    page.envoyer({ type: 'saisie', id, texte: 'echo la-$((1 + 1))\r' });
    await page.attendreLeTexte(id, /la-2/);
    for (const nom of ['keltrove-jeton', 'keltrove-carnet.json'].map((nom) => join(maison.cache, `${nom}.zero`))) {
      assert.ok(!quoi.startsWith('un périph') || statSync(nom).isCharacterDevice(), 'le périphérique reste ce qu’il est');
    }
    if (quoi !== 'un tube') return;
    assert.match(readFileSync(maison.cheminJeton, 'utf8'), /^[0-9a-f]{64}\n$/);
    await attendreLeFichier(maison.cheminCarnet, (texte) => texte.includes('Terminal 1'));
  });
}

test('un jeton que tient un autre compte est remplacé', { skip: sansRoot }, async (t) => {
  const maison = await preparerMaison(t);
  writeFileSync(maison.cheminJeton, 'x'.repeat(64), { mode: 0o600 });
  execFileSync('chown', ['65534', maison.cheminJeton]);
  await lancer(t, maison);
  assert.match(readFileSync(maison.cheminJeton, 'utf8'), /^[0-9a-f]{64}\n$/);
});

test('une liste qui est un lien s’écrit à son bout, et le lien reste', async (t) => {
  const maison = await preparerMaison(t);
  const ailleurs = join(maison.maison, 'ailleurs');
  mkdirSync(ailleurs);
  const cible = join(ailleurs, 'ma liste.json');
  symlinkSync(join('..', 'ailleurs', 'ma liste.json'), maison.cheminCarnet);
  writeFileSync(`${cible}.0123abcd.tmp`, '{');
  const { serveur, page } = await lancerAvecUnePage(t, maison);
  page.envoyer({ type: 'renommer', id: page.terminaux[0].id, nom: 'Suivi' });
  await page.attendre(() => page.terminaux[0].nom === 'Suivi', 'le nom');
  await arreter(serveur);
  assert.ok(lstatSync(maison.cheminCarnet).isSymbolicLink());
  assert.deepEqual(readdirSync(ailleurs), ['ma liste.json']);
  assert.equal(JSON.parse(readFileSync(cible, 'utf8')).terminaux[0].nom, 'Suivi');
  // Abîmée, elle est écartée là où elle est.
  writeFileSync(cible, '{');
  await arreter(await lancer(t, maison));
  assert.equal(readlinkSync(maison.cheminCarnet), join('..', 'ailleurs', 'ma liste.json'));
  assert.equal(readdirSync(ailleurs).filter((nom) => nom.startsWith('ma liste.json.abime-')).length, 1);
});

test('ce que le système ne peut pas rouvrir reste dans la liste, tel quel, et se rouvre à la demande', async (t) => {
  const maison = await preparerMaison(t);
  const gardes = CARNET(40);
  writeFileSync(maison.cheminCarnet, gardes);
  // De quoi servir une page et ouvrir quelques terminaux, pas quarante.
  const avant = ['prlimit', '--nofile=48:48'];
  const { serveur, page } = await lancerAvecUnePage(t, maison, { avant });
  const ouverts = () => page.terminaux.filter(({ ouvert }) => ouvert);
  const eteints = () => page.terminaux.filter(({ ouvert }) => !ouvert);
  assert.deepEqual(page.terminaux.map(({ nom }) => nom), JSON.parse(gardes).terminaux.map(({ nom }) => nom));
  assert.ok(ouverts().length > 0 && eteints().length > 0, `${ouverts().length} ouverts`);
  t.diagnostic(`${ouverts().length} ouverts, ${eteints().length} éteints`);
  const [eteint] = eteints();
  await page.attendreLeTexte(eteint.id, new RegExp(`ligne ${eteint.nom.slice(4)}\\r\\n`));
  page.envoyer({ type: 'rouvrir', id: eteint.id });
  await page.attendre(() => /pas de quoi ouvrir/.test(page.derniers.get('avis')?.texte), 'le refus');
  // La page a pris quelques descripteurs : un seul terminal fermé n’y suffirait pas.
  const fermes = ouverts().slice(0, 5).map(({ id }) => id);
  for (const id of fermes) page.envoyer({ type: 'fermer', id });
  await page.attendre(() => page.terminaux.every(({ id }) => !fermes.includes(id)), 'de la place');
  // La place se libère un peu après que l’onglet a disparu : on redemande, comme on cliquerait de nouveau.
  const rouvert = () => page.terminaux.find(({ id }) => id === eteint.id)?.ouvert;
  while (!rouvert()) {
    page.derniers.delete('avis');
    page.envoyer({ type: 'rouvrir', id: eteint.id });
    await page.attendre(() => rouvert() || page.derniers.has('avis'), 'une réponse');
  }
  page.envoyer({ type: 'saisie', id: eteint.id, texte: 'echo "<$PWD $((1 + 1))>"\r' });
  await page.attendreLeTexte(eteint.id, /<\/usr 2>/);
  await arreter(serveur);
  const ecrits = maison.lireLeCarnet();
  for (const { id } of eteints()) assert.deepEqual(ecrits.find((autre) => autre.id === id), JSON.parse(gardes).terminaux.find((autre) => autre.id === id));
});

test('au-delà de cinquante, les terminaux gardés restent éteints, et rien n’en est perdu', async (t) => {
  const maison = await preparerMaison(t);
  writeFileSync(maison.cheminCarnet, CARNET(53));
  const { serveur, page } = await lancerAvecUnePage(t, maison);
  assert.deepEqual(page.terminaux.filter(({ ouvert }) => !ouvert).map(({ id }) => id), ['t50', 't51', 't52']);
  await arreter(serveur);
  assert.deepEqual(maison.lireLeCarnet().slice(50), JSON.parse(CARNET(53)).terminaux.slice(50));
});

test('une écriture ratée est reprise dès qu’il y a de la place, et l’alerte s’en va', { skip: sansRoot }, async (t) => {
  const maison = await preparerMaison(t, { montage: 'size=64k' });
  const { serveur, page } = await lancerAvecUnePage(t, maison);
  const plein = join(maison.maison, 'plein');
  try {
    writeFileSync(plein, 'x'.repeat(64 * 1024));
  } catch (erreur) {
    assert.equal(erreur.code, 'ENOSPC');
  }
  page.envoyer({ type: 'renommer', id: page.terminaux[0].id, nom: 'Pendant' });
  await page.attendre(() => /^Vos terminaux ne sont plus gardés : le disque est plein/.test(page.derniers.get('alerte')?.texte), 'l’alerte');
  const tardive = await ouvrirParLaPage(t, serveur);
  assert.match(tardive.derniers.get('accueil').alerte, /le disque est plein/);
  rmSync(plein);
  await page.attendre(() => page.derniers.get('alerte').texte === null, 'la fin de l’alerte');
  assert.equal(maison.lireLeCarnet()[0].nom, 'Pendant');
});

for (const [quoi, options, phrase] of [
  ['pleine', 'nr_inodes=1', /le disque est plein/],
  ['en lecture seule', 'ro', /en lecture seule/],
]) {
  test(`une maison ${quoi} donne quand même un terminal, et la page le dit`, { skip: sansRoot }, async (t) => {
    const maison = await preparerMaison(t, { montage: options, sansReglages: true });
    const serveur = await lancer(t, maison);
    assert.ok(serveur.port > 0, serveur.sortie);
    assert.equal(existsSync(maison.cheminJeton), false);
    const page = await ouvrirParLaPage(t, serveur);
    await page.attendre(() => phrase.test(page.derniers.get('accueil').alerte ?? page.derniers.get('alerte')?.texte), 'l’alerte');
    const [{ id }] = page.terminaux;
    page.envoyer({ type: 'saisie', id, texte: 'echo vit-$((1 + 1))\r' });
    await page.attendreLeTexte(id, /vit-2/);
    assert.deepEqual(await arreter(serveur), { code: 0, signal: null });
    assert.ok(serveur.sortie.includes('Vos terminaux ne sont plus gardés'));
  });
}

test('une maison qui n’existe pas donne un terminal quelque part', async (t) => {
  const maison = await preparerMaison(t);
  const serveur = await lancer(t, maison, { env: { HOME: '/proc/nulle-part' } });
  const page = await ouvrirParLaPage(t, serveur);
  const [{ id }] = page.terminaux;
  page.envoyer({ type: 'saisie', id, texte: 'echo "<$(pwd)>"\r' });
  await page.attendreLeTexte(id, /<\/>/);
});

test('un titre posé sans rien afficher atteint la page, et une page qui vient tard est à jour', async (t) => {
  const maison = await preparerMaison(t);
  const { serveur, page } = await lancerAvecUnePage(t, maison);
  const [{ id }] = page.terminaux;
  const attendreLeNom = (quelle, nom) => quelle.attendre(() => quelle.terminaux[0].nom === nom, nom);
  page.envoyer({ type: 'saisie', id, texte: "printf '\\033[?1049h'; for t in un deux trois; do printf '\\033]2;%s\\a' $t; read -rsn1; done; printf '\\033[?1049l'\r" });
  await attendreLeNom(page, 'un');
  page.envoyer({ type: 'saisie', id, texte: 'x' });
  await attendreLeNom(page, 'deux');
  const tardive = await ouvrirParLaPage(t, serveur);
  assert.equal(tardive.terminaux[0].nom, 'deux');
  page.envoyer({ type: 'saisie', id, texte: 'x' });
  for (const quelle of [page, tardive]) await attendreLeNom(quelle, 'trois');
});

test('un dossier change sans un mot : la liste le sait aussitôt, ses lignes viennent après', async (t) => {
  const maison = await preparerMaison(t);
  const { page } = await lancerAvecUnePage(t, maison);
  const [{ id }] = page.terminaux;
  page.envoyer({ type: 'saisie', id, texte: 'cd /usr/share; echo rendu-$((1 + 1))\r' });
  await page.attendreLeTexte(id, /rendu-2/);
  await attendreLeFichier(maison.cheminCarnet, (texte) => texte.includes('"/usr/share"'));
  assert.ok(!readFileSync(maison.cheminCarnet, 'utf8').includes('rendu-2'));
  await attendreLeFichier(maison.cheminCarnet, (texte) => texte.includes('rendu-2'));
});
