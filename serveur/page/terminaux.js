import { Lectures } from '/lectures.js';
import { VueTerminal } from '/vueTerminal.js';

const CLE_DU_CHOISI = 'keltrove-terminal-choisi';

// Les terminaux de la page : lequel est choisi, et lesquels se montrent à côté de lui.
// Les call-backs donnés : creerLesQuand(id), quandChoisi(id), quandRetire(id).
export class Terminaux {
  #zone;
  #reglages;
  #quand;
  #vues = new Map();
  #lectures = new Lectures();
  #descriptions = [];
  #idChoisi = null;

  constructor(zone, reglages, quand) {
    this.#zone = zone;
    this.#reglages = reglages;
    this.#quand = quand;
  }

  get idChoisi() {
    return this.#idChoisi;
  }

  get choisi() {
    return this.#vues.get(this.#idChoisi);
  }

  vue(id) {
    return this.#vues.get(id);
  }

  nom(id) {
    return this.#descriptions.find((description) => description.id === id)?.nom;
  }

  ecrire(id, texte) {
    this.#lire(this.#vues.get(id), (vue, quandLu) => vue.ecrire(texte, quandLu));
  }

  rejouer(id, texte) {
    this.#lire(this.#vues.get(id), (vue, quandLu) => vue.rejouer(texte, quandLu));
  }

  estMontre(id) {
    return this.#vues.get(id)?.panneau.hidden === false;
  }

  chacun(faire) {
    this.#vues.forEach(faire);
  }

  // Les panneaux sont refaits : ce que le serveur rejoue, et qu’ils attendent, est alors seul à s’y afficher.
  recommencer(descriptions) {
    const garde = this.#idChoisi ?? localStorage.getItem(CLE_DU_CHOISI);
    this.#descriptions.forEach(({ id }) => this.#retirer(id));
    this.#descriptions = [];
    this.#idChoisi = null;
    this.suivre(descriptions.map((description) => ({ ...description, reprise: true })), garde);
  }

  suivre(descriptions, souhaite = null) {
    const ancienRang = this.#rang(this.#idChoisi);
    const ids = descriptions.map(({ id }) => id);
    for (const { id } of this.#descriptions) if (!ids.includes(id)) this.#retirer(id);
    this.#descriptions = descriptions;
    for (const [rang, description] of descriptions.entries()) {
      if (!this.#vues.has(description.id)) this.#ajouter(description);
      this.#vues.get(description.id).panneau.style.order = rang;
    }
    if (ids.includes(this.#idChoisi)) return this.#montrer();
    // Le choisi vient de disparaître : son voisin prend la place.
    this.choisir(ids.includes(souhaite) ? souhaite : ids[Math.min(Math.max(ancienRang, 0), ids.length - 1)]);
  }

  choisir(id, { avecLeFocus = true } = {}) {
    if (!this.#vues.has(id)) return;
    this.#idChoisi = id;
    localStorage.setItem(CLE_DU_CHOISI, id);
    this.#montrer();
    if (avecLeFocus) this.choisi.prendreLeFocus();
    this.#quand.quandChoisi(id);
  }

  choisirAutour(pas) {
    const nombre = this.#descriptions.length;
    this.choisir(this.#descriptions[(this.#rang(this.#idChoisi) + pas + nombre) % nombre]?.id);
  }

  #lire(vue, lire) {
    if (!vue) return;
    if (!vue.panneau.hidden) lire(vue, () => {});
    else this.#lectures.ajouter(vue, (quandLu) => lire(vue, quandLu));
  }

  #rang(id) {
    return this.#descriptions.findIndex((description) => description.id === id);
  }

  // Se montrent ensemble ceux qui se suivent dans le même groupe.
  #montrer() {
    const { groupe } = this.#descriptions[this.#rang(this.#idChoisi)];
    let [debut, fin] = [this.#rang(this.#idChoisi), this.#rang(this.#idChoisi) + 1];
    while (this.#descriptions[debut - 1]?.groupe === groupe) debut -= 1;
    while (this.#descriptions[fin]?.groupe === groupe) fin += 1;
    for (const [rang, { id }] of this.#descriptions.entries()) {
      const vue = this.#vues.get(id);
      const montree = rang >= debut && rang < fin;
      if (montree && vue.panneau.hidden) this.#lectures.rattraper(vue);
      if (montree) vue.montrer();
      else vue.cacher();
      vue.panneau.classList.toggle('choisi', fin - debut > 1 && id === this.#idChoisi);
    }
  }

  #ajouter(description) {
    const { id } = description;
    const quand = this.#quand.creerLesQuand(id);
    quand.quandFocus = () => id === this.#idChoisi || this.choisir(id, { avecLeFocus: false });
    const vue = new VueTerminal(description, this.#reglages.valeurs, quand);
    this.#zone.append(vue.panneau);
    this.#vues.set(id, vue);
  }

  #retirer(id) {
    this.#lectures.oublier(this.#vues.get(id));
    this.#vues.get(id).retirer();
    this.#vues.delete(id);
    this.#quand.quandRetire(id);
  }
}
