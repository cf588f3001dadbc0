import { SILENCE, Veille } from '/veille.js';

const APPEL = 'Ce terminal vous appelle.';
const ATTENTE = 'Ce terminal s’est tu et semble vous attendre.';

// Prévient, par l’application, qu’un terminal attend ; et le marque, avec ou sans elle.
// `terminaux` donne nommer(id), estRegarde(id), marquer(id, oui) et choisir(id).
export class Notifications {
  quandEtat = () => {};
  prevenir = true;
  #terminaux;
  #veilles = new Map();
  #minuteur = null;
  #pont = window.webkit?.messageHandlers?.keltroveNotifications;

  constructor(terminaux) {
    this.#terminaux = terminaux;
    window.keltrovePont = {
      etat: (etat) => this.quandEtat(etat),
      ouvrir: (id) => terminaux.choisir(id),
    };
    for (const nom of ['focus', 'blur', 'visibilitychange']) window.addEventListener(nom, () => this.relire(), true);
  }

  get reliees() {
    return this.#pont !== undefined;
  }

  demanderLEtat() {
    this.#pont?.postMessage({ action: 'etat' });
  }

  ouvrirLesReglages() {
    this.#pont?.postMessage({ action: 'reglages' });
  }

  // Quels terminaux sont sous les yeux de l’utilisateur : à redire dès que cela change.
  relire() {
    for (const [id, veille] of this.#veilles) {
      const regarde = this.#terminaux.estRegarde(id);
      veille.regarder(regarde);
      if (regarde) this.#terminaux.marquer(id, false);
    }
  }

  suivre(id) {
    this.#veilles.set(id, new Veille());
  }

  oublier(id) {
    this.#veilles.delete(id);
  }

  saisie(id, texte) {
    this.#veilles.get(id)?.saisir(texte, performance.now());
  }

  taille(id) {
    this.#veilles.get(id)?.redimensionner(performance.now());
  }

  sortie(id, nombre) {
    this.#veilles.get(id)?.sortir(nombre, performance.now());
    this.#minuteur ??= setTimeout(() => this.#verifier(), SILENCE);
  }

  sonnerie(id) {
    if (this.#veilles.get(id)?.annoncer()) this.#annoncer(id, APPEL);
  }

  #verifier() {
    this.#minuteur = null;
    const maintenant = performance.now();
    let prochaine = Infinity;
    for (const [id, veille] of this.#veilles) {
      const { echeance } = veille;
      if (echeance === null) continue;
      if (echeance > maintenant) prochaine = Math.min(prochaine, echeance);
      else if (veille.annoncer()) this.#annoncer(id, ATTENTE);
    }
    if (prochaine < Infinity) this.#minuteur = setTimeout(() => this.#verifier(), prochaine - maintenant);
  }

  #annoncer(id, corps) {
    this.#terminaux.marquer(id, true);
    if (this.prevenir) this.#pont?.postMessage({ action: 'notifier', id, titre: this.#terminaux.nommer(id), corps });
  }
}
