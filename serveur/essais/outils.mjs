import { execFileSync, spawn } from 'node:child_process';
import { existsSync, mkdirSync, mkdtempSync, readFileSync, rmSync, watch, writeFileSync } from 'node:fs';
import { request } from 'node:http';
import { createServer } from 'node:net';
import { tmpdir } from 'node:os';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';
import WebSocket from 'ws';

export const DOSSIER_DU_SERVEUR = fileURLToPath(new URL('..', import.meta.url));
const PATIENCE = 60_000;

// Une maison neuve par essai, au nom malcommode exprès ; à un autre compte si on le veut, et sur un système de fichiers à
// elle, en mémoire, si `montage` en donne les options, ce que seul root peut faire.
export async function preparerMaison(t, { port, uid, montage, sansReglages = false } = {}) {
  const maison = mkdtempSync(join(tmpdir(), 'keltrove essai é '));
  const serveurs = [];
  t.after(async () => {
    for (const { processus, fin } of serveurs) {
      processus.kill('SIGKILL');
      await borner(fin, () => `un serveur ne finit pas : ${processus.pid}`);
    }
    if (montage) execFileSync('umount', ['-l', maison]);
    rmSync(maison, { recursive: true, force: true });
  });
  if (montage) execFileSync('mount', ['-t', 'tmpfs', '-o', montage, 'tmpfs', maison]);
  const cache = join(maison, '.zelcor');
  const choisi = port ?? (await trouverUnPort());
  if (!sansReglages) {
    mkdirSync(cache, { mode: 0o700 });
    writeFileSync(join(cache, 'keltrove.json'), JSON.stringify({ port: choisi }));
  }
  if (uid !== undefined) execFileSync('chown', ['-R', `${uid}:${uid}`, maison]);
  return {
    maison,
    uid,
    serveurs,
    port: choisi,
    cheminCarnet: join(cache, 'keltrove-carnet.json'),
    cheminJeton: join(cache, 'keltrove-jeton'),
    cache,
    lireLeCarnet: () => JSON.parse(readFileSync(join(cache, 'keltrove-carnet.json'), 'utf8')).terminaux,
  };
}

export async function trouverUnPort() {
  const serveur = createServer().listen(0, '127.0.0.1');
  await unEvenement(serveur, 'listening');
  const { port } = serveur.address();
  serveur.close();
  await unEvenement(serveur, 'close');
  return port;
}

// Le vrai serveur, prêt, sous le compte de sa maison ou un autre, d’un autre dossier ou précédé d’une autre commande si on
// le veut : la promesse est tenue à sa phrase d’écoute, ou à sa fin s’il n’écoute pas.
export async function lancer(t, { maison, serveurs, uid: compte }, { env = {}, uid = compte, dossier = DOSSIER_DU_SERVEUR, avant = [] } = {}) {
  const [programme, ...arguments_] = [...avant, process.execPath, 'serveur.mjs'];
  const processus = spawn(programme, arguments_, {
    uid,
    // Sans lui, un autre compte resterait du groupe de root.
    gid: uid,
    cwd: dossier,
    // Un interpréteur qui finit après son serveur ne doit plus rien écrire dans la maison.
    env: { ...process.env, HOME: maison, SHELL: '/bin/bash', LANG: 'C.UTF-8', HISTFILE: '/dev/null', ...env },
    stdio: ['ignore', 'pipe', 'pipe'],
  });
  const serveur = { processus, sortie: '', port: null };
  serveurs.push(serveur);
  serveur.fin = new Promise((suite) => processus.once('close', (code, signal) => suite({ code, signal })));
  processus.stderr.on('data', (octets) => (serveur.sortie += octets));
  const pret = new Promise((suite) => {
    processus.stdout.on('data', (octets) => {
      serveur.sortie += octets;
      const ecoute = /écoute sur http:\/\/127\.0\.0\.1:(\d+)\//.exec(serveur.sortie);
      if (ecoute) suite((serveur.port = Number(ecoute[1])));
    });
  });
  await borner(Promise.race([pret, serveur.fin]), () => `le serveur n’est pas prêt : ${serveur.sortie}`);
  return serveur;
}

export async function arreter(serveur, signal = 'SIGTERM') {
  serveur.processus.kill(signal);
  return borner(serveur.fin, () => 'le serveur ne s’arrête pas');
}

export function demander(port, chemin, { entetes = {}, methode = 'GET', hote = '127.0.0.1' } = {}) {
  return borner(new Promise((reussir, echouer) => {
    const requete = request({ host: hote, port, path: chemin, method: methode, headers: entetes }, (reponse) => {
      let corps = '';
      reponse.setEncoding('utf8').on('data', (texte) => (corps += texte));
      reponse.on('end', () => reussir({ statut: reponse.statusCode, entetes: reponse.headers, corps }));
    });
    requete.on('error', echouer).end();
  }), () => `pas de réponse pour ${chemin}`);
}

// Une page sans écran : elle retient ce qu’elle reçoit et laisse attendre ce qui doit arriver.
export class Page {
  terminaux = [];
  textes = new Map();
  derniers = new Map();
  fins = new Map();
  lus = new Map();
  recus = 0;
  accuse = true;
  // Ce qu’une page garde de lignes, quand elle le dit.
  lignesGardees = undefined;
  // Ne garder que la fin de chaque texte : un essai de charge ne tiendrait pas en mémoire.
  compter = false;
  #socket;
  #attentes = new Set();

  static async ouvrir(t, port, jeton) {
    const page = new Page();
    page.#socket = new WebSocket(`ws://127.0.0.1:${port}/terminaux`, { origin: `http://127.0.0.1:${port}` });
    t.after(() => page.#socket.terminate());
    page.fin = new Promise((suite) => page.#socket.once('close', suite));
    page.#socket.on('message', (donnees) => page.#recevoir(JSON.parse(donnees)));
    await borner(unEvenement(page.#socket, 'open'), () => 'la liaison ne s’ouvre pas');
    page.envoyer({ type: 'bonjour', jeton });
    return page;
  }

  envoyer(message) {
    this.#socket.send(JSON.stringify(message));
  }

  fermer() {
    this.#socket.close();
    return this.fin;
  }

  // Comme un onglet que le navigateur aurait suspendu : plus rien n’est lu.
  geler() {
    this.#socket.pause();
  }

  texte(id) {
    return this.textes.get(id) ?? '';
  }

  attendre(condition, quoi) {
    let attente;
    const promesse = new Promise((suite) => {
      attente = () => condition() && suite();
      this.#attentes.add(attente);
      attente();
    });
    return borner(promesse, () => `jamais vu : ${quoi}`).finally(() => this.#attentes.delete(attente));
  }

  // Tant qu’il en arrive : une machine chargée met plus que la patience à tout faire passer.
  async attendreLaFinDuFlot(condition, quoi) {
    for (;;) {
      const { recus } = this;
      try {
        return await this.attendre(condition, quoi);
      } catch (faute) {
        if (this.recus === recus) throw faute;
      }
    }
  }

  attendreLeTexte(id, motif) {
    return this.attendre(() => motif.test(this.texte(id)), motif).then(() => motif.exec(this.texte(id)));
  }

  // L’accusé de réception de tout ce que la page a gardé pour elle jusque-là.
  rattraper() {
    this.accuse = true;
    for (const [id, texte] of this.textes) this.#accuser(id, texte);
  }

  #accuser(id, texte) {
    this.envoyer({ type: 'recu', id, nombre: texte.length, lignesGardees: this.lignesGardees });
  }

  #recevoir(message) {
    this.derniers.set(message.type, message);
    if (message.type === 'lu') this.lus.set(message.id, (this.lus.get(message.id) ?? 0) + message.nombre);
    if (message.terminaux) this.terminaux = message.terminaux;
    if (message.texte !== undefined && message.id) {
      this.recus += message.texte.length;
      if (this.compter) this.fins.set(message.id, ((this.fins.get(message.id) ?? '') + message.texte).slice(-200));
      else this.textes.set(message.id, this.texte(message.id) + message.texte);
      if (this.accuse) this.#accuser(message.id, message.texte);
    }
    for (const attente of this.#attentes) attente();
  }
}

// Le contenu d’un fichier remplacé en route, dès qu’il convient.
export async function attendreLeFichier(chemin, convient) {
  const veilleur = watch(dirname(chemin));
  try {
    const lire = () => {
      const texte = existsSync(chemin) ? readFileSync(chemin, 'utf8') : '';
      return convient(texte) && texte;
    };
    return await borner(new Promise((suite) => {
      const essayer = () => lire() && suite(lire());
      veilleur.on('change', essayer);
      essayer();
    }), () => `jamais écrit comme voulu : ${chemin}`);
  } finally {
    veilleur.close();
  }
}

export function unEvenement(emetteur, nom) {
  return new Promise((reussir, echouer) => {
    emetteur.once(nom, reussir);
    if (nom !== 'error') emetteur.once('error', echouer);
  });
}

export function borner(promesse, quoi) {
  let minuteur;
  const limite = new Promise((_, echouer) => {
    minuteur = setTimeout(() => echouer(new Error(quoi())), PATIENCE);
  });
  return Promise.race([promesse, limite]).finally(() => clearTimeout(minuteur));
}

// Un serveur et une page liée à lui, sa liste reçue.
export async function lancerAvecUnePage(t, maison, options) {
  const serveur = await lancer(t, maison, options);
  const page = await Page.ouvrir(t, serveur.port, readFileSync(maison.cheminJeton, 'utf8').trim());
  await page.attendre(() => page.terminaux.length > 0, 'la liste');
  return { serveur, page };
}
