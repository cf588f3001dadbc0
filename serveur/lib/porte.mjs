import { once } from 'node:events';
import { createServer } from 'node:net';
import { examiner } from './pairs.mjs';

const ESSAIS_MAXIMUM = 20;
// Bien plus que n’en ouvrent quelques pages : au-delà, les plus anciennes qui n’ont rien prouvé laissent la place.
const EN_ATTENTE_MAXIMUM = 500;
// Lire la table du noyau coûte autant pour une prise que pour cent, et Node n’en reçoit qu’une par tour de boucle : la
// première est examinée aussitôt ; celles qui suivent de près, ensemble, après un répit en millisecondes.
const LOT = 64;
const REPIT = 5;
// En millisecondes, sans un mot.
const PATIENCE = 30_000;
const SANS_IPV6 = ['EADDRNOTAVAIL', 'EAFNOSUPPORT'];

// Les deux adresses de « localhost » sur un même port, et qui peut entrer. Chaque prise admise va à `recevoir`.
export class Porte {
  port;
  #ecoutes;
  #arrivees = [];
  #prochainTri = null;
  #dernierTri = -Infinity;
  #entrees = new Set();
  #recevoir;

  // Lève l’erreur du système quand le port n’est pas libre ; zéro : un port au choix du système.
  static async ouvrir(port, recevoir) {
    for (let essai = 1; ; essai += 1) {
      try {
        return new Porte(await ecouterEnsemble(port), recevoir);
      } catch (erreur) {
        if (port !== 0 || essai === ESSAIS_MAXIMUM) throw erreur;
      }
    }
  }

  constructor(ecoutes, recevoir) {
    this.#ecoutes = ecoutes;
    this.#recevoir = recevoir;
    this.port = ecoutes[0].address().port;
    for (const ecoute of ecoutes) {
      // Sans descripteur libre, une arrivée est perdue : ce n’est pas une raison de s’arrêter.
      ecoute.on('error', () => {});
      ecoute.on('connection', (prise) => this.#accueillir(prise));
    }
  }

  // Elle a montré le jeton : rien ne la fera plus sortir.
  confier(prise) {
    this.#entrees.delete(prise);
  }

  fermer() {
    for (const ecoute of this.#ecoutes) ecoute.close();
  }

  #accueillir(prise) {
    prise.on('error', () => {});
    this.#arrivees.push(prise);
    // Un compte qui en ouvrirait sans fin ne doit ni tenir tous nos descripteurs, ni occuper tout notre temps.
    if (this.#arrivees.length === LOT) return this.#trier();
    const calme = performance.now() - this.#dernierTri > REPIT;
    this.#prochainTri ??= setTimeout(() => this.#trier(), calme ? 0 : REPIT);
  }

  #trier() {
    clearTimeout(this.#prochainTri);
    this.#prochainTri = null;
    this.#dernierTri = performance.now();
    const arrivees = this.#arrivees.splice(0);
    for (const [rang, raison] of examiner(arrivees, this.port).entries()) {
      if (raison) refuser(arrivees[rang], raison);
      else this.#admettre(arrivees[rang]);
    }
  }

  #admettre(prise) {
    this.#entrees.add(prise);
    prise.once('close', () => this.#entrees.delete(prise));
    if (this.#entrees.size > EN_ATTENTE_MAXIMUM) this.#entrees.values().next().value.destroy();
    prise.setTimeout(PATIENCE, () => this.#entrees.has(prise) && prise.destroy());
    this.#recevoir(prise);
    prise.resume();
  }
}

// Jamais l’une sans l’autre : « localhost » est d’abord ::1, et qui la tiendrait recevrait notre page à notre place.
async function ecouterEnsemble(port) {
  const ipv4 = await ecouter('127.0.0.1', port);
  try {
    return [ipv4, await ecouter('::1', ipv4.address().port)];
  } catch (erreur) {
    if (SANS_IPV6.includes(erreur.code)) return [ipv4];
    ipv4.close();
    throw erreur;
  }
}

async function ecouter(host, port) {
  const ecoute = createServer({ allowHalfOpen: true, noDelay: true, pauseOnConnect: true });
  ecoute.listen({ host, port, exclusive: true });
  await once(ecoute, 'listening');
  return ecoute;
}

function refuser(prise, raison) {
  const corps = `${raison}\n`;
  prise.end([
    'HTTP/1.1 403 Forbidden', 'Content-Type: text/plain; charset=utf-8', `Content-Length: ${Buffer.byteLength(corps)}`,
    'Connection: close', '', corps,
  ].join('\r\n'));
  prise.destroySoon();
}
