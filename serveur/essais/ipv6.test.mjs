import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { readFileSync } from 'node:fs';
import { test } from 'node:test';
import { PHRASES } from '../lib/pairs_linux.mjs';
import { AUTRE_COMPTE, demanderTout, lancerUnProgramme, lesStatuts, partoutRefuse, sansAutreCompte, SERVI } from './comptes.mjs';
import { demander, lancer, Page, preparerMaison, trouverUnPort } from './outils.mjs';

const autre = { skip: sansAutreCompte };

// Il veut écouter à cette adresse, par tous les moyens que le système prête ; il y sert une page qui a tout de la nôtre.
const IMPOSTEUR = `
import errno, socket, sys
adresse, port = sys.argv[1], int(sys.argv[2])
prise = socket.socket(socket.AF_INET6 if ":" in adresse else socket.AF_INET)
for option in (socket.SO_REUSEADDR, socket.SO_REUSEPORT):
    prise.setsockopt(socket.SOL_SOCKET, option, 1)
try:
    prise.bind((adresse, port))
    prise.listen()
except OSError as erreur:
    print(errno.errorcode[erreur.errno] + ".", flush=True)
    sys.exit()
print("écoute.", flush=True)
page = b'<!doctype html><meta name="keltrove-jeton" content="x">'
while True:
    visite, _ = prise.accept()
    visite.recv(65536)
    visite.sendall(b"HTTP/1.1 200 OK\\r\\nContent-Length: %d\\r\\nConnection: close\\r\\n\\r\\n%s" % (len(page), page))
    visite.close()
`;

async function poserUnImposteur(t, adresse, port, uid) {
  const imposteur = lancerUnProgramme(t, ['python3', '-c', IMPOSTEUR, adresse, port], { uid });
  return (await imposteur.attendre(/^(.*)\.$/m))[1];
}

const surLesDeux = async (port) => Promise.all(['127.0.0.1', '::1'].map((hote) => demander(port, '/', { hote })));

for (const adresse of ['::1', '::']) {
  test(`un autre compte qui tient déjà ${adresse} n’a pas notre page : le serveur tient les deux adresses d’un autre port`, autre, async (t) => {
    const maison = await preparerMaison(t);
    assert.equal(await poserUnImposteur(t, adresse, maison.port, AUTRE_COMPTE), 'écoute');
    const serveur = await lancer(t, maison);
    assert.ok(serveur.port && serveur.port !== maison.port, serveur.sortie);
    const jeton = readFileSync(maison.cheminJeton, 'utf8').trim();
    for (const { statut, corps } of await surLesDeux(serveur.port)) assert.ok(statut === 200 && corps.includes(jeton));
  });
}

test('une fois le serveur ouvert, aucun autre compte n’écoute plus sur son port, à quelque adresse que ce soit', autre, async (t) => {
  const { port } = await lancer(t, await preparerMaison(t));
  for (const adresse of ['::1', '::', '127.0.0.1', '0.0.0.0', '::ffff:127.0.0.1']) {
    assert.equal(await poserUnImposteur(t, adresse, port, AUTRE_COMPTE), 'EADDRINUSE', adresse);
  }
  assert.equal(await poserUnImposteur(t, '::1', await trouverUnPort(), AUTRE_COMPTE), 'écoute');
});

test('par ::1 aussi, notre compte est servi et un autre ne l’est pas', autre, async (t) => {
  const { port } = await lancer(t, await preparerMaison(t));
  assert.deepEqual(lesStatuts(await demanderTout(t, port, { hote: '::1' })), SERVI);
  assert.deepEqual(await demanderTout(t, port, { hote: '::1', uid: AUTRE_COMPTE }), partoutRefuse(PHRASES.autre));
});

test('la même page en imitation : la nôtre suffit, celle d’un autre compte ne passe pas pour elle', autre, async (t) => {
  for (const uid of [undefined, AUTRE_COMPTE]) {
    const maison = await preparerMaison(t);
    assert.equal(await poserUnImposteur(t, '127.0.0.1', maison.port, uid), 'écoute');
    const serveur = await lancer(t, maison);
    if (uid === undefined) assert.match(serveur.sortie, /^keltrove tourne déjà sur /);
    else assert.ok(serveur.port && serveur.port !== maison.port, serveur.sortie);
  }
});

const SANS_IPV6 = ['unshare', '-n', 'sh', '-c', 'ip link set lo up && echo 1 > /proc/sys/net/ipv6/conf/all/disable_ipv6 && exec "$@"', 'sh'];
const sansReseauAPart = spawnSync(SANS_IPV6[0], [...SANS_IPV6.slice(1), 'true']).status === 0 ? false : 'aucun réseau à part ne peut se créer ici';

test('sans IPv6, le serveur sert sur 127.0.0.1', { skip: sansReseauAPart }, async (t) => {
  const maison = await preparerMaison(t);
  const { port, processus } = await lancer(t, maison, { avant: SANS_IPV6 });
  assert.equal(port, maison.port);
  const dedans = ['nsenter', '-t', processus.pid, '-n'];
  assert.deepEqual(lesStatuts(await demanderTout(t, port, { avant: dedans })), SERVI);
});

// Sans jamais en lâcher une ; tout ce qu’il reçoit est rendu à la fin.
const ASSAILLANT = `
import resource, selectors, socket, sys
port, nombre = int(sys.argv[1]), 3000
resource.setrlimit(resource.RLIMIT_NOFILE, (nombre + 100, nombre + 100))
prises, recu = [], set()
for i in range(nombre):
    prise = socket.socket(socket.AF_INET6 if i % 2 else socket.AF_INET)
    prise.settimeout(10)
    try:
        prise.connect(("::1" if i % 2 else "127.0.0.1", port))
        prise.sendall(b"GET / HTTP/1.1\\r\\nHost: localhost:%d\\r\\n\\r\\n" % port)
    except OSError:
        pass
    prises.append(prise)
    if i == nombre // 2:
        print("à mi-chemin", flush=True)
print("toutes ouvertes", flush=True)
sys.stdin.readline()
for prise in prises:
    try:
        recu.add(prise.recv(65536).decode())
    except OSError:
        pass
print(len(prises), *sorted(recu), "fini", flush=True)
`;

test('à court de descripteurs sous mille prises d’un autre compte, le serveur ne lui donne rien, et répond toujours au nôtre', autre, async (t) => {
  const maison = await preparerMaison(t);
  // Moins que ce qu’il laisse entrer à la fois.
  const serveur = await lancer(t, maison, { avant: ['prlimit', '--nofile=64:64'] });
  const jeton = readFileSync(maison.cheminJeton, 'utf8').trim();
  const page = await Page.ouvrir(t, serveur.port, jeton);
  await page.attendre(() => page.terminaux.length === 1, 'le premier terminal');
  const [{ id }] = page.terminaux;
  const faireEcho = (mot) => {
    page.envoyer({ type: 'saisie', id, texte: `echo ${mot}-$((20 + 1))\r` });
    return page.attendreLeTexte(id, new RegExp(`${mot}-21`));
  };
  const assaillant = lancerUnProgramme(t, ['python3', '-c', ASSAILLANT, serveur.port], { uid: AUTRE_COMPTE });
  await assaillant.attendre(/à mi-chemin/);
  await faireEcho('pendant');
  await assaillant.attendre(/toutes ouvertes/);
  await faireEcho('tenu');
  assaillant.processus.stdin.write('\n');
  await assaillant.attendre(/^3000[^]* fini$/m);
  assert.ok(assaillant.dit.includes(PHRASES.autre));
  assert.doesNotMatch(assaillant.dit, /HTTP\/1\.1 (?!403)/);
  // Même quand plus rien ne s’ouvre, le serveur sait à qui il a affaire.
  assert.ok(!assaillant.dit.includes(PHRASES.inconnu));
  assert.ok(!assaillant.dit.includes(jeton));
  assert.equal(serveur.processus.exitCode, null);
  for (const { statut } of await surLesDeux(serveur.port)) assert.equal(statut, 200);
  await faireEcho('ensuite');
});
