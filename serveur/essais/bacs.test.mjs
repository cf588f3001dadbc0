import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { chownSync, existsSync, mkdirSync, readFileSync } from 'node:fs';
import { delimiter, join } from 'node:path';
import { test } from 'node:test';
import { PHRASES } from '../lib/pairs_linux.mjs';
import { AUTRE_COMPTE, codeLisible, demanderTout, lancerUnProgramme, lesStatuts, partoutRefuse, sansAutreCompte, SERVI } from './comptes.mjs';
import { demander, lancer, Page, preparerMaison } from './outils.mjs';

// Tout y est permis, fichiers et réseau compris, sauf d’être des nôtres.
const BAC = ['bwrap', '--dev-bind', '/', '/', '--unshare-all', '--share-net', '--die-with-parent'];
const sansBac = spawnSync(BAC[0], [...BAC.slice(1), 'true']).status === 0 ? false : 'bwrap n’est pas installé, ou ne marche pas ici';

test('un programme du même compte, mais dans un bac à sable, n’obtient rien ; dehors, tout', { skip: sansBac }, async (t) => {
  const { port } = await lancer(t, await preparerMaison(t));
  for (const hote of ['127.0.0.1', '::1']) {
    assert.deepEqual(await demanderTout(t, port, { avant: BAC, hote }), partoutRefuse(PHRASES.bac));
    assert.deepEqual(lesStatuts(await demanderTout(t, port, { hote })), SERVI);
  }
});

test('sous un compte ordinaire aussi, le bac à sable se voit', { skip: sansBac || sansAutreCompte }, async (t) => {
  const { port } = await lancer(t, await preparerMaison(t, { uid: AUTRE_COMPTE }), { dossier: codeLisible() });
  assert.deepEqual(await demanderTout(t, port, { uid: AUTRE_COMPTE, avant: BAC }), partoutRefuse(PHRASES.bac));
});

// Le descripteur voyage d’un bout à l’autre d’une paire de prises : en chemin, aucun processus ne le tient.
const CACHEUR = `
import array, socket, sys
port = int(sys.argv[1])
prise = socket.create_connection(("127.0.0.1", port))
ici, la = socket.socketpair()
ici.sendmsg([b"x"], [(socket.SOL_SOCKET, socket.SCM_RIGHTS, array.array("i", [prise.fileno()]))])
prise.close()
print("cachée", flush=True)
sys.stdin.readline()
descripteur = array.array("i", la.recvmsg(1, socket.CMSG_SPACE(4))[1][0][2])[0]
prise = socket.socket(fileno=descripteur)
prise.sendall(b"GET / HTTP/1.1\\r\\nHost: 127.0.0.1:%d\\r\\nConnection: close\\r\\n\\r\\n" % port)
recu = b""
while morceau := prise.recv(65536):
    recu += morceau
print(recu.decode(), "fini", flush=True)
`;

test('cacher sa prise le temps de l’examen n’y fait rien', { skip: sansBac }, async (t) => {
  const maison = await preparerMaison(t);
  const serveur = await lancer(t, maison);
  serveur.processus.kill('SIGSTOP');
  const client = lancerUnProgramme(t, [...BAC, 'python3', '-c', CACHEUR, serveur.port]);
  await client.attendre(/cachée/);
  serveur.processus.kill('SIGCONT');
  // Les prises s’examinent dans l’ordre de leur arrivée.
  assert.equal((await demander(serveur.port, '/')).statut, 200);
  client.processus.stdin.write('\n');
  await client.attendre(/fini/);
  assert.match(client.dit, /HTTP\/1\.1 403 /);
  assert.ok(client.dit.includes(PHRASES.bac));
  assert.ok(!client.dit.includes(readFileSync(maison.cheminJeton, 'utf8').trim()));
});

const NAVIGATEURS = {
  // Sous root, ou là où personne n’a droit à un bac à sable, Chromium n’accepte de démarrer que sans le sien.
  chromium: (profil, uid) => ['--headless=new', '--disable-gpu', '--no-first-run', '--disable-background-networking', `--user-data-dir=${profil}`, ...(uid === 0 || sansBac ? ['--no-sandbox'] : [])],
  'firefox-esr': (profil) => ['--headless', '--no-remote', '--profile', profil],
};
const estInstalle = (programme) => process.env.PATH.split(delimiter).some((dossier) => existsSync(join(dossier, programme)));
// Le terminal dit sa taille à chaque changement : seule une page reliée la change.
const DIRE_LA_TAILLE = `bash -c 'trap "echo taille: \\$(stty size)." WINCH; echo veille-$((1 + 1)); while :; do sleep 1000 & wait; kill $!; done'\r`;

for (const [programme, options] of Object.entries(NAVIGATEURS)) {
  for (const uid of [process.getuid(), AUTRE_COMPTE]) {
    const autre = uid === AUTRE_COMPTE;
    const skip = (estInstalle(programme) ? false : `${programme} n’est pas installé`) || (autre && sansAutreCompte);
    test(`${programme} est servi${autre ? ', sous un compte ordinaire aussi' : ''}`, { skip }, async (t) => {
      const maison = await preparerMaison(t, autre ? { uid } : {});
      const { port } = await lancer(t, maison, autre ? { dossier: codeLisible() } : {});
      const page = await Page.ouvrir(t, port, readFileSync(maison.cheminJeton, 'utf8').trim());
      await page.attendre(() => page.terminaux.length === 1, 'le premier terminal');
      const [{ id }] = page.terminaux;
      page.envoyer({ type: 'saisie', id, texte: DIRE_LA_TAILLE });
      await page.attendreLeTexte(id, /veille-2/);
      const profil = join(maison.maison, 'profil');
      mkdirSync(profil);
      chownSync(profil, uid, uid);
      const env = { ...process.env, HOME: maison.maison };
      const navigateur = lancerUnProgramme(t, [programme, ...options(profil, uid), `http://localhost:${port}/`], { uid: autre ? uid : undefined, env });
      const vue = page.attendreLeTexte(id, /taille: (\d+) (\d+)\./);
      // Avant la maison, qui ne s’efface pas tant qu’il y écrit.
      const [, lignes, colonnes] = await vue.finally(navigateur.arreter);
      assert.notDeepEqual([lignes, colonnes], ['24', '80']);
    });
  }
}
