// En octets.
const BORNE = 4 * 1024 * 1024;
const ELAN = 256 * 1024;
// En millisecondes.
const REPIT_MAXIMUM = 50;

// Ce qui attend d’être lu par un programme. Le système n’en garde que quelques kilo-octets, et rien ne prévient qu’il
// reprend de la place : on y revient, de moins en moins souvent tant que le programme ne lit pas.
export class Saisie {
  #ecrire;
  #attente = [];
  #octets = 0;
  #suite = null;
  #repit = 1;

  // `ecrire(octets)` rend le nombre d’octets pris, ou lève EAGAIN.
  constructor(ecrire) {
    this.#ecrire = ecrire;
  }

  // Faux, et rien n’est gardé, quand il y aurait trop à garder. `quandEcrit` une fois tout donné au programme.
  ajouter(texte, quandEcrit = () => {}) {
    const octets = Buffer.from(texte);
    if (this.#octets + octets.length > BORNE) return false;
    this.#octets += octets.length;
    this.#attente.push({ octets, quandEcrit });
    if (this.#suite === null) this.#pousser();
    return true;
  }

  vider() {
    clearTimeout(this.#suite);
    this.#suite = null;
    this.#attente = [];
    this.#octets = 0;
  }

  #pousser() {
    this.#suite = null;
    try {
      this.#donner();
    } catch (erreur) {
      // EIO : plus personne au bout. Le reste n’a plus de lecteur.
      if (erreur.code !== 'EAGAIN') return this.vider();
      this.#repit = Math.min(this.#repit * 2, REPIT_MAXIMUM);
    }
    if (this.#attente.length > 0) this.#suite = setTimeout(() => this.#pousser(), this.#repit);
  }

  #donner() {
    for (let donnes = 0; donnes < ELAN && this.#attente.length > 0;) {
      const [tete] = this.#attente;
      const pris = this.#ecrire(tete.octets);
      this.#repit = 1;
      donnes += pris;
      this.#octets -= pris;
      tete.octets = tete.octets.subarray(pris);
      if (tete.octets.length > 0) continue;
      this.#attente.shift();
      tete.quandEcrit();
    }
  }
}
