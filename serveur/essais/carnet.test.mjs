import assert from 'node:assert/strict';
import { chmodSync, existsSync, mkdirSync, readdirSync, readFileSync, statSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { ouvrirLeCarnet } from '../lib/carnet.mjs';
import { arreter, attendreLeFichier, lancer, lancerAvecUnePage, Page, preparerMaison } from './outils.mjs';

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

test('après une mort brutale, ordre, groupes et dernières lignes reviennent', async (t) => {
  const maison = await preparerMaison(t);
  const { serveur, page } = await lancerAvecUnePage(t, maison);
  const [{ id: premier }] = page.terminaux;
  page.envoyer({ type: 'ouvrir', depuis: premier, aCote: true });
  await page.attendre(() => page.terminaux.length === 2, 'deux terminaux');
  const { id: second } = page.terminaux[1];
  page.envoyer({ type: 'deplacer', id: second, rang: 0 });
  // Tapé, corrigé, coloré : seul compte ce qui se lit à l’écran.
  page.envoyer({ type: 'saisie', id: premier, texte: "printf '\\033[31mvu-%s\\033[0m\\n' dernierXX\b\b\r" });
  await page.attendreLeTexte(premier, /vu-dernier\x1b/);
  await attendreLeFichier(maison.cheminCarnet, (texte) => texte.includes('"vu-dernier"'));
  await arreter(serveur, 'SIGKILL');

  const { page: seconde } = await lancerAvecUnePage(t, maison);
  assert.deepEqual(seconde.terminaux.map(({ id }) => id), [second, premier]);
  assert.equal(seconde.terminaux[0].groupe, seconde.terminaux[1].groupe);
  await seconde.attendreLeTexte(premier, /vu-dernier\r\n[^]*── fin de la session précédente ──/);
});

test('une session où rien n’est tapé ne laisse ni invite ni marque de plus', async (t) => {
  const maison = await preparerMaison(t);
  writeFileSync(join(maison.maison, '.bashrc'), "PS1='$ '\n");
  const ouvrir = async (reponse) => {
    const { serveur, page } = await lancerAvecUnePage(t, maison);
    const [{ id }] = page.terminaux;
    if (reponse) {
      await page.attendreLeTexte(id, /\x1b\[c$/);
      page.envoyer({ type: 'reponse', id, texte: reponse });
    }
    await page.attendreLeTexte(id, /\$ $/);
    return { serveur, page, id };
  };
  const premiere = await ouvrir();
  premiere.page.envoyer({ type: 'saisie', id: premiere.id, texte: 'echo vu-$((1 + 1))\r' });
  await premiere.page.attendreLeTexte(premiere.id, /vu-2\r\n[^]*\$ $/);
  await arreter(premiere.serveur);
  const [{ lignes }] = maison.lireLeCarnet();
  assert.ok(lignes.includes('vu-2'));
  for (let i = 0; i < 2; i += 1) {
    await arreter((await ouvrir()).serveur);
    assert.deepEqual(maison.lireLeCarnet()[0].lignes, lignes);
  }
  // Ce que la page répond d’office à un interpréteur qui l’interroge n’est pas tapé.
  writeFileSync(join(maison.maison, '.bashrc'), "PS1='$ '; printf '\\033[c'; read -rs -d c\n");
  await arreter((await ouvrir('\x1b[?62;22c')).serveur);
  assert.deepEqual(maison.lireLeCarnet()[0].lignes, lignes);
  writeFileSync(join(maison.maison, '.bashrc'), "PS1='$ '\n");
  // Tapé, ou dit sans que rien ne le soit : cela se garde.
  const { serveur, page, id } = await ouvrir();
  page.envoyer({ type: 'saisie', id, texte: 'x' });
  await page.attendreLeTexte(id, /\$ x$/);
  await arreter(serveur);
  const [{ lignes: apres }] = maison.lireLeCarnet();
  assert.deepEqual(apres.slice(0, lignes.length), lignes);
  assert.match(apres.slice(lignes.length).join('\n'), /^── fin de la session précédente ──\n.*\$ x$/);
  writeFileSync(join(maison.maison, '.bashrc'), "PS1='$ '; seq 4\n");
  await arreter((await ouvrir()).serveur);
  assert.deepEqual(maison.lireLeCarnet()[0].lignes.slice(-5), ['1', '2', '3', '4', '$ ']);
});

test('un programme plein écran ne chasse pas les lignes d’avant lui', async (t) => {
  const maison = await preparerMaison(t);
  const { serveur, page } = await lancerAvecUnePage(t, maison);
  const [{ id }] = page.terminaux;
  page.envoyer({ type: 'saisie', id, texte: 'echo avant-$((1 + 1))\r' });
  await attendreLeFichier(maison.cheminCarnet, (texte) => texte.includes('"avant-2"'));
  page.envoyer({ type: 'saisie', id, texte: "printf '\\033[?1049hplein-écran-%s' $((1 + 1)); read\r" });
  await page.attendreLeTexte(id, /plein-écran-2/);
  await arreter(serveur);
  const [{ lignes }] = maison.lireLeCarnet();
  assert.ok(lignes.includes('avant-2') && !lignes.join().includes('plein-écran-2'));
});

test('les lignes lues dans la liste ne commandent pas au terminal', async (t) => {
  const maison = await preparerMaison(t);
  const lignes = ['\x1b]0;pris\x07\x1b[2J\x9b6n', 3, null, { a: 1 }];
  writeFileSync(maison.cheminCarnet, JSON.stringify({ terminaux: [{ id: 'a1', nom: 'Un', dossier: '/', groupe: '<b>', lignes }] }));
  const { page } = await lancerAvecUnePage(t, maison);
  await page.attendreLeTexte('a1', /^\]0;pris\[2J6n\r\n3\r\nnull\r\n\[object Object\]\r\n\x1b\[2m──/);
  assert.match(page.terminaux[0].groupe, /^[0-9a-f]{12}$/);
});

test('une liste qu’on ne peut ni lire ni écarter n’est jamais écrasée', () => {
  const phrases = [];
  const carnet = ouvrirLeCarnet({ chemin: '/proc/version', version: '1', decrire: () => assert.fail('écrit'), signaler: (phrase) => phrases.push(phrase) });
  assert.deepEqual(carnet.lire(), { terminaux: [] });
  carnet.noterLeRangement();
  carnet.noterLesLignes();
  return carnet.clore().then(() => assert.equal(phrases.length, 1));
});

test('l’avis d’une liste abîmée atteint la première page, une fois', async (t) => {
  const maison = await preparerMaison(t);
  writeFileSync(maison.cheminCarnet, '{');
  const { serveur, page } = await lancerAvecUnePage(t, maison);
  await page.attendre(() => /mise de côté/.test(page.derniers.get('avis')?.texte), 'l’avis');
  const seconde = await Page.ouvrir(t, serveur.port, readFileSync(maison.cheminJeton, 'utf8').trim());
  await seconde.attendre(() => seconde.derniers.has('reprise'), 'la reprise');
  assert.ok(!seconde.derniers.has('avis'));
});

for (const [ancienne, attendu] of [['0.0.9', 1], ['0.0', 1], ['0.1.0', 0], ['0.10.0', 0], ['99', 0], [undefined, 0], ['<b>', 0], [3, 0]]) {
  test(`une liste écrite par la version ${ancienne} ${attendu ? 'annonce' : 'n’annonce pas'} la mise à jour`, async (t) => {
    const maison = await preparerMaison(t);
    const liste = { serveur: ancienne, terminaux: [{ id: 'a1', nom: 'Un', dossier: maison.maison }] };
    writeFileSync(maison.cheminCarnet, JSON.stringify(liste));
    const serveur = await lancer(t, maison);
    const messages = serveur.sortie.match(/^MESSAGE=.*$/gm) ?? [];
    assert.deepEqual(messages, attendu ? ['MESSAGE=Keltrove a été mis à jour : voici la version 0.1.0.'] : []);
    await arreter(serveur);
    assert.ok(!(await lancer(t, maison)).sortie.includes('MESSAGE='));
  });
}

test('un second serveur lancé pendant l’arrêt prend la place, avec la liste', async (t) => {
  const maison = await preparerMaison(t);
  const { serveur, page } = await lancerAvecUnePage(t, maison);
  const [{ id }] = page.terminaux;
  page.envoyer({ type: 'renommer', id, nom: 'Passé' });
  // Sourd au raccrochage, il fait durer l’arrêt.
  page.envoyer({ type: 'saisie', id, texte: "trap '' HUP; echo pid-$$-; exec sleep 600\r" });
  const [, pid] = await page.attendreLeTexte(id, /pid-(\d+)-/);
  t.after(() => existsSync(`/proc/${pid}`) && process.kill(Number(pid), 'SIGKILL'));
  serveur.processus.kill('SIGTERM');
  assert.equal(await page.fin, 1001);
  assert.equal(serveur.processus.exitCode, null);
  const second = await lancer(t, maison);
  assert.equal(second.port, maison.port);
  assert.deepEqual(await serveur.fin, { code: 0, signal: null });
  assert.deepEqual(maison.lireLeCarnet().map(({ nom }) => nom), ['Passé']);
});

test('une liste lisible de tous redevient privée ; un jeton que d’autres ont pu lire est remplacé ; le dossier se referme', async (t) => {
  const maison = await preparerMaison(t);
  writeFileSync(maison.cheminCarnet, '{"terminaux": []}');
  writeFileSync(maison.cheminJeton, 'x'.repeat(64));
  for (const chemin of [maison.cheminCarnet, maison.cheminJeton]) chmodSync(chemin, 0o644);
  chmodSync(maison.cache, 0o755);
  await lancer(t, maison);
  for (const chemin of [maison.cheminCarnet, maison.cheminJeton]) assert.equal(statSync(chemin).mode & 0o777, 0o600);
  assert.match(readFileSync(maison.cheminJeton, 'utf8'), /^[0-9a-f]{64}\n$/);
  assert.equal(statSync(maison.cache).mode & 0o777, 0o700);
});

test('un interpréteur sourd au raccrochage n’empêche pas l’arrêt', async (t) => {
  const maison = await preparerMaison(t);
  const { serveur, page } = await lancerAvecUnePage(t, maison);
  const [{ id }] = page.terminaux;
  page.envoyer({ type: 'saisie', id, texte: "trap '' HUP; echo pid-$$-; exec sleep 600\r" });
  const [, pid] = await page.attendreLeTexte(id, /pid-(\d+)-/);
  t.after(() => existsSync(`/proc/${pid}`) && process.kill(Number(pid), 'SIGKILL'));
  const debut = performance.now();
  assert.deepEqual(await arreter(serveur), { code: 0, signal: null });
  // Ce que l’application lui laisse.
  assert.ok(performance.now() - debut < 12_000);
  assert.ok(existsSync(`/proc/${pid}`), 'il vit encore : personne ne l’a attendu');
  assert.equal(maison.lireLeCarnet().length, 1);
});

test('ce qu’une mort au milieu d’une écriture a laissé est balayé au lancement, par celui qui a le port', async (t) => {
  const maison = await preparerMaison(t);
  const [restes, gardes] = [
    ['keltrove-carnet.json.0123abcd.tmp', 'keltrove-jeton.ffffffff.tmp'],
    ['keltrove-carnet.json.abime-x', 'keltrove-carnet.json.a moi.tmp', 'keltrove.json.0123abcd.tmp', 'x-keltrove-jeton.ffffffff.tmp'],
  ];
  const poser = (noms) => noms.forEach((nom) => writeFileSync(join(maison.cache, nom), '{'));
  const presents = (noms) => noms.filter((nom) => existsSync(join(maison.cache, nom)));
  poser([...restes, ...gardes]);
  await lancer(t, maison);
  assert.deepEqual(presents([...restes, ...gardes]), gardes);
  poser(restes);
  const second = await lancer(t, maison);
  await second.fin;
  assert.deepEqual(presents(restes), restes);
});
