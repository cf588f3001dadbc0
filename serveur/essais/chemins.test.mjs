import assert from 'node:assert/strict';
import { chmodSync, existsSync, mkdirSync, readFileSync, symlinkSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { decouper } from '../lib/editeur.mjs';
import { reconnaitreLesChemins } from '../page/traces.js';
import { attendreLeFichier, lancerAvecUnePage, preparerMaison } from './outils.mjs';

test('un chemin suivi d’une ligne se reconnaît dans ce que disent les outils', () => {
  const vus = (texte) => reconnaitreLesChemins(texte).map(({ chemin, ligne, colonne }) => [chemin, ligne, colonne].filter(Boolean).join(' '));
  assert.deepEqual(vus('src/a.c:12:5: error: x'), ['src/a.c 12 5']);
  assert.deepEqual(vus('In file included from ../é/b.h:3,'), ['../é/b.h 3']);
  assert.deepEqual(vus('  --> src/main.rs:2:9'), ['src/main.rs 2 9']);
  assert.deepEqual(vus('~/notes.txt:7:du texte'), ['~/notes.txt 7']);
  assert.deepEqual(vus('  File "/tmp/mon dossier/x.py", line 3, in f'), ['/tmp/mon dossier/x.py 3']);
  assert.deepEqual(vus('    at f (file:///tmp/un%20dossier/a.mjs:4:11)'), ['/tmp/un dossier/a.mjs 4 11']);
  assert.deepEqual(vus('at /srv/app/[id]/page.tsx:3:1'), ['/srv/app/[id]/page.tsx 3 1']);
  assert.deepEqual(vus('il est 12:30, rapport 3:2; a:b:c'), ['12 30', '3 2']);
  assert.deepEqual(vus('rien ici : 12'), []);
  const debut = performance.now();
  vus('a/'.repeat(20_000));
  assert.ok(performance.now() - debut < 2000, 'une longue ligne ne fige rien');
});

test('une commande se découpe en mots, sans interpréteur', () => {
  assert.deepEqual(decouper(`code -g "{fichier}:{ligne}" 'a b'c $(x) ; &`), ['code', '-g', '{fichier}:{ligne}', 'a bc', '$(x)', ';', '&']);
});

// Un éditeur qui note comment on l’appelle.
async function preparer(t) {
  const maison = await preparerMaison(t);
  const bac = join(maison.maison, 'bin');
  mkdirSync(bac);
  const note = join(maison.maison, 'note');
  for (const nom of ['xdg-open', 'editeur']) {
    writeFileSync(join(bac, nom), `#!/bin/sh\n{ printf '%s|' "$@"; env; } > '${note}.neuf'; mv '${note}.neuf' '${note}'\n`, { mode: 0o755 });
  }
  writeFileSync(join(bac, 'refuse'), '#!/bin/sh\nexit 4\n', { mode: 0o755 });
  const { page } = await lancerAvecUnePage(t, maison, { env: { PATH: `${bac}:${process.env.PATH}`, NODE_OPTIONS: '--no-warnings', KELTROVE_SECRET: 'x' } });
  const [{ id }] = page.terminaux;
  const ecrire = (nom, texte, mode = 0o644) => {
    writeFileSync(join(maison.maison, nom), texte);
    chmodSync(join(maison.maison, nom), mode);
  };
  const refuser = async (chemin, motif, commande) => {
    page.derniers.delete('avis');
    page.envoyer({ type: 'editer', id, chemin, ligne: 1, commande });
    await page.attendre(() => motif.test(page.derniers.get('avis')?.texte), motif);
    assert.ok(!existsSync(note));
  };
  return { maison, page, id, note, ecrire, refuser };
}

test('seul ce qui existe vraiment est un lien, depuis le dossier du terminal', async (t) => {
  const { maison, page, id, ecrire } = await preparer(t);
  mkdirSync(join(maison.maison, 'src'));
  ecrire('src/a.c', 'x');
  const demander = async (chemins, demande) => {
    page.envoyer({ type: 'chemins', id, demande, chemins });
    await page.attendre(() => page.derniers.get('chemins')?.demande === demande, 'la réponse');
    return page.derniers.get('chemins').existent;
  };
  assert.deepEqual(await demander(['src/a.c', '~/src/a.c', join(maison.maison, 'src/a.c'), 'a.c', 'src', '12', 3, '/dev/null'], 1), [true, true, true, false, false, false, false, false]);
  page.envoyer({ type: 'saisie', id, texte: 'cd src\r' });
  await page.attendre(() => page.terminaux[0].dossier.endsWith('/src'), 'le dossier');
  assert.deepEqual(await demander(['a.c'], 2), [true]);
  assert.deepEqual(await demander('a.c', 3), []);
});

test('l’éditeur reçoit le fichier, la ligne et la colonne, dans un environnement propre', async (t) => {
  const { maison, page, id, note, ecrire } = await preparer(t);
  ecrire('$(touch pris) a.c', 'x');
  page.envoyer({ type: 'editer', id, chemin: '$(touch pris) a.c', ligne: 12, colonne: 5, commande: 'editeur -g "{fichier}:{ligne}:{colonne}" +{ligne}' });
  const recu = await attendreLeFichier(note, (texte) => texte !== '');
  assert.ok(recu.startsWith(`-g|${maison.maison}/$(touch pris) a.c:12:5|+12|`), recu);
  assert.doesNotMatch(recu, /^(NODE_|KELTROVE_)/m);
  assert.match(recu, /^HOME=/m);
  assert.ok(!existsSync(join(maison.maison, 'pris')));
});

test('le bureau n’ouvre que du texte, rien qui pourrait s’exécuter ; et l’échec se dit', async (t) => {
  const { maison, page, id, note, ecrire, refuser } = await preparer(t);
  ecrire('outil', '#!/bin/sh\n', 0o755);
  ecrire('x.desktop', '[Desktop Entry]\nExec=touch pris\n');
  ecrire('cache', '\n[Desktop Entry]\nExec=touch pris\n');
  ecrire('paquet.jar', 'PK\0\0');
  symlinkSync(join(maison.maison, 'x.desktop'), join(maison.maison, 'lien.txt'));
  for (const nom of ['outil', 'x.desktop', 'cache', 'paquet.jar', 'lien.txt']) await refuser(nom, /pourrait s’exécuter en s’ouvrant\. Choisissez/);
  await refuser('outil', /pourrait s’exécuter/, 'gio open {fichier}');
  await refuser('absent', /^Ce fichier n’existe plus\.$/);
  await refuser('outil', /^« inconnu » ne se lance pas/, 'inconnu {fichier}');
  await refuser('outil', /^« refuse » n’a pas pu ouvrir ce fichier \(code 4\)/, 'refuse');
  ecrire('texte.txt', 'du texte');
  page.envoyer({ type: 'editer', id, chemin: 'texte.txt', ligne: 1 });
  await attendreLeFichier(note, (texte) => texte.startsWith(`${maison.maison}/texte.txt|`));
  // Choisi exprès, un éditeur ouvre tout.
  page.envoyer({ type: 'editer', id, chemin: 'outil', ligne: 1, commande: 'editeur' });
  await attendreLeFichier(note, (texte) => texte.startsWith(`${maison.maison}/outil|`));
  assert.ok(readFileSync(note, 'utf8').includes('HOME='));
});
