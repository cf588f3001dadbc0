import assert from 'node:assert/strict';
import { mkdirSync, readdirSync, readFileSync, statSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { Navigateur, PageVue, sansNavigateur } from './navigateur.mjs';
import { lancerAvecUnePage, preparerMaison } from './outils.mjs';

let navigateur;

before(async () => sansNavigateur || (navigateur = await Navigateur.lancer()));
after(() => navigateur?.fermer());

async function preparer(t, options) {
  const maison = await preparerMaison(t, options);
  const choisir = (declaration) => {
    mkdirSync(join(maison.maison, '.config'), { recursive: true });
    writeFileSync(join(maison.maison, '.config', 'user-dirs.dirs'), `# Du bureau\nXDG_DESKTOP_DIR="$HOME/Bureau"\n${declaration}\n`);
  };
  return { maison, choisir };
}

// Rend la phrase du serveur.
async function enregistrer(page, morceaux, nom) {
  const [{ id }] = page.terminaux;
  for (const texte of morceaux) page.envoyer({ type: 'historique', id, texte });
  page.derniers.delete('avis');
  page.envoyer({ type: 'enregistrer', id, nom });
  await page.attendre(() => page.derniers.has('avis'), 'la réponse');
  return page.derniers.get('avis').texte;
}

const textes = (dossier) => readdirSync(dossier).filter((nom) => nom.endsWith('.txt')).sort();

test('l’historique va dans les téléchargements, privé, sans rien écraser', async (t) => {
  const { maison, choisir } = await preparer(t);
  const { page } = await lancerAvecUnePage(t, maison, { env: { XDG_CONFIG_HOME: '' } });
  assert.match(await enregistrer(page, ['un\n'], 'T'), /^Historique enregistré dans votre dossier personnel, sous le nom « T – /);
  assert.equal(textes(maison.maison).length, 1);

  const dossier = join(maison.maison, 'Téléchargements');
  choisir('XDG_DOWNLOAD_DIR="$HOME/Téléchargements/"');
  assert.match(await enregistrer(page, ['deux\n'], 'T'), /votre dossier personnel/);
  mkdirSync(dossier);
  const phrases = [];
  for (const texte of ['trois', 'quatre', 'cinq']) phrases.push(await enregistrer(page, [texte, ' fois\n'], '../Été: "a"/b\u0007\u202e'));
  for (const phrase of phrases) assert.match(phrase, /^Historique enregistré dans le dossier « Téléchargements », sous le nom « -Été- -a--b-- – \d{4}-\d\d-\d\d \d\d\.\d\d( \(\d\))?\.txt »\.$/);
  const noms = phrases.map((phrase) => /nom « (.*) »/.exec(phrase)[1]);
  assert.deepEqual(readdirSync(dossier).sort(), [...noms].sort());
  assert.deepEqual(noms.map((nom) => readFileSync(join(dossier, nom), 'utf8')), ['trois fois\n', 'quatre fois\n', 'cinq fois\n']);
  for (const nom of noms) assert.equal(statSync(join(dossier, nom)).mode & 0o777, 0o600);
});

test('un dossier étrange, un nom interminable ou absent : le fichier s’écrit quand même', async (t) => {
  const { maison, choisir } = await preparer(t);
  const { page } = await lancerAvecUnePage(t, maison, { env: { XDG_CONFIG_HOME: '' } });
  for (const [rang, declaration] of ['XDG_DOWNLOAD_DIR="relatif"', 'XDG_DOWNLOAD_DIR="$HOMES"', 'XDG_DOWNLOAD_DIR=', 'XDG_DOWNLOAD_DIR="/dev/null"'].entries()) {
    choisir(declaration);
    assert.match(await enregistrer(page, [], ['🎉'.repeat(300), '...', null, { a: 1 }][rang]), /enregistré dans votre dossier personnel/);
  }
  assert.equal(textes(maison.maison).length, 4);
});

test('un disque plein se dit, et ne laisse rien derrière', { skip: process.getuid() === 0 ? false : 'monter un disque demande root' }, async (t) => {
  const { maison } = await preparer(t, { montage: 'size=200k' });
  const { page } = await lancerAvecUnePage(t, maison);
  const phrase = await enregistrer(page, ['x'.repeat(500_000)], 'T');
  assert.equal(phrase, 'L’historique n’a pas pu être enregistré dans votre dossier personnel : le disque est plein, faites-y de la place.');
  assert.deepEqual(readdirSync(maison.maison).filter((nom) => /txt/.test(nom)), []);
});

test('Ctrl+Maj+S enregistre tout, et recolle les lignes que la largeur a repliées', { skip: sansNavigateur }, async (t) => {
  const page = await PageVue.ouvrir(t, navigateur);
  await page.ecrire('for i in {1..9000}; do printf "%0200d\\n" $i; done; printf "\\e[?1049hun écran qui passera"; read');
  await page.touche('Entrée');
  await page.attendreLeTexte('/^un écran/m');
  await page.touche('Ctrl+Maj+S');
  const nom = await page.attendre('/sous le nom « (.*) »/.exec(document.querySelector(".avis").textContent)?.[1]');
  const lignes = readFileSync(join(page.maison.maison, nom), 'utf8').split('\n');
  assert.deepEqual(lignes.slice(-3000, -1), Array.from({ length: 2999 }, (_, i) => String(6002 + i).padStart(200, '0')));
  assert.deepEqual(page.fautes, []);
});
