import assert from 'node:assert/strict';
import { existsSync, mkdirSync, readdirSync, readFileSync, statSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { arreter, lancer, Page, preparerMaison } from './outils.mjs';

async function lancerAvecUnePage(t, maison) {
  const serveur = await lancer(t, maison);
  const page = await Page.ouvrir(t, serveur.port, readFileSync(maison.cheminJeton, 'utf8').trim());
  await page.attendre(() => page.terminaux.length > 0, 'la liste');
  return { serveur, page };
}

test('la liste est écrite à l’arrêt et revient au lancement, avec noms, ordre et dossiers', async (t) => {
  const maison = await preparerMaison(t);
  const dossier = join(maison.maison, 'un dossier à moi');
  mkdirSync(dossier);
  const { serveur, page } = await lancerAvecUnePage(t, maison);
  const [{ id: premier }] = page.terminaux;
  page.envoyer({ type: 'ouvrir' });
  await page.attendre(() => page.terminaux.length === 2, 'deux terminaux');
  page.envoyer({ type: 'renommer', id: premier, nom: 'Atelier' });
  page.envoyer({ type: 'saisie', id: premier, texte: 'cd "un dossier à moi" && echo rendu-$((1 + 1))\r' });
  await page.attendreLeTexte(premier, /rendu-2/);
  assert.deepEqual(await arreter(serveur), { code: 0, signal: null });

  const ecrits = maison.lireLeCarnet();
  const attendus = [['Atelier', dossier], ['Terminal 2', maison.maison]];
  assert.deepEqual(ecrits.map(({ nom, dossier: lu }) => [nom, lu]), attendus);
  assert.equal(statSync(maison.cheminCarnet).mode & 0o777, 0o600);
  assert.deepEqual(readdirSync(maison.cache).filter((nom) => nom.endsWith('.tmp')), []);

  const { page: seconde } = await lancerAvecUnePage(t, maison);
  assert.deepEqual(seconde.terminaux.map(({ id, nom }) => [id, nom]), ecrits.map(({ id, nom }) => [id, nom]));
  seconde.envoyer({ type: 'saisie', id: premier, texte: 'echo "<$(pwd)>"\r' });
  await seconde.attendreLeTexte(premier, /<[^>$]*un dossier à moi>/);
});

test('SIGINT et SIGHUP rangent aussi la liste', async (t) => {
  for (const signal of ['SIGINT', 'SIGHUP']) {
    const maison = await preparerMaison(t);
    const serveur = await lancer(t, maison);
    assert.deepEqual(await arreter(serveur, signal), { code: 0, signal: null });
    assert.equal(maison.lireLeCarnet().length, 1);
  }
});

test('un dossier disparu est remplacé par la maison', async (t) => {
  const maison = await preparerMaison(t);
  const entree = { id: 'a1', nom: 'Perdu', dossier: join(maison.maison, 'absent') };
  writeFileSync(maison.cheminCarnet, JSON.stringify({ version: 1, terminaux: [entree, entree] }));
  const { serveur, page } = await lancerAvecUnePage(t, maison);
  assert.equal(page.terminaux[0].id, 'a1');
  assert.notEqual(page.terminaux[1].id, 'a1');
  await arreter(serveur);
  assert.deepEqual(maison.lireLeCarnet().map(({ dossier }) => dossier), [maison.maison, maison.maison]);
});

for (const abime of ['{"terminaux": [', '[]', '{"terminaux": [{"nom": 3}]}', '']) {
  test(`une liste abîmée (${abime || 'vide'}) est mise de côté et un terminal s’ouvre`, async (t) => {
    const maison = await preparerMaison(t);
    writeFileSync(maison.cheminCarnet, abime);
    const { serveur, page } = await lancerAvecUnePage(t, maison);
    assert.equal(page.terminaux.length, 1);
    const ecartes = readdirSync(maison.cache).filter((nom) => nom.startsWith('keltrove-carnet.json.abime-'));
    assert.equal(ecartes.length, 1);
    assert.equal(readFileSync(join(maison.cache, ecartes[0]), 'utf8'), abime);
    assert.equal(serveur.sortie.split('\n').filter((ligne) => ligne.includes('abîmée')).length, 1);
  });
}

test('un interpréteur sourd au raccrochage n’empêche pas l’arrêt', async (t) => {
  const maison = await preparerMaison(t);
  const { serveur, page } = await lancerAvecUnePage(t, maison);
  const [{ id }] = page.terminaux;
  page.envoyer({ type: 'saisie', id, texte: "trap '' HUP; echo pid-$$-; exec sleep 600\r" });
  const [, pid] = await page.attendreLeTexte(id, /pid-(\d+)-/);
  t.after(() => existsSync(`/proc/${pid}`) && process.kill(Number(pid), 'SIGKILL'));
  const debut = performance.now();
  assert.deepEqual(await arreter(serveur), { code: 0, signal: null });
  assert.ok(performance.now() - debut < 2000);
  assert.equal(maison.lireLeCarnet().length, 1);
});
