import { randomBytes } from 'node:crypto';
import { Terminal } from './Terminal.mjs';

const MAXIMUM = 50;
const LONGUEUR_DES_NOMS = 60;
const DUREE_D_UN_VRAI_USAGE = 1000;

// Les terminaux ouverts, dans l’ordre des onglets. Il en reste toujours un, sauf pendant l’arrêt.
export class Terminaux {
  quandSortie = () => {};
  quandListeChange = () => {};
  quandLigneSaisie = () => {};
  #liste = [];
  #arret = null;

  get nombre() {
    return this.#liste.length;
  }

  restaurer(entrees) {
    for (const entree of entrees) this.ouvrir(entree);
    if (this.nombre === 0) this.ouvrir();
  }

  // Rend le terminal, ou rien quand il n’y a plus de place ici ou dans le système.
  ouvrir({ id, nom, ...reste } = {}) {
    if (this.#arret || this.nombre >= MAXIMUM) return null;
    let terminal;
    try {
      terminal = new Terminal({ ...reste, id: this.#choisirUnId(id), nom: nettoyer(nom) || this.#choisirUnNom() });
    } catch {
      return null;
    }
    const naissance = performance.now();
    terminal.quandSortie = (texte) => this.quandSortie(terminal.id, texte);
    terminal.quandFin = () => this.#quandTerminalFini(terminal, performance.now() - naissance);
    this.#liste.push(terminal);
    this.quandListeChange();
    return terminal;
  }

  fermer(id) {
    const terminal = this.trouver(id);
    if (!terminal) return;
    this.#retirer(terminal);
    terminal.raccrocher();
    if (this.nombre === 0) this.ouvrir();
  }

  renommer(id, nom) {
    const terminal = this.trouver(id);
    const propre = nettoyer(nom);
    if (!terminal || !propre || propre === terminal.nom) return;
    terminal.nom = propre;
    this.quandListeChange();
  }

  saisir(id, texte) {
    this.trouver(id)?.saisir(texte);
    if (texte.includes('\r')) this.quandLigneSaisie();
  }

  trouver(id) {
    return this.#liste.find((terminal) => terminal.id === id);
  }

  tous() {
    return [...this.#liste];
  }

  pourLaPage() {
    return this.#liste.map(({ id, nom, colonnes, lignes }) => ({ id, nom, colonnes, lignes }));
  }

  pourLeCarnet() {
    return this.#liste.map(({ id, nom, dossier }) => ({ id, nom, dossier }));
  }

  // Tenue quand tous les interpréteurs ont fini ; l’appelant décide combien de temps il attend.
  raccrocher() {
    this.#arret ??= Promise.all(this.#liste.map((terminal) => new Promise((suite) => {
      terminal.quandFin = suite;
      terminal.raccrocher();
    })));
    return this.#arret;
  }

  #quandTerminalFini(terminal, duree) {
    if (!this.#liste.includes(terminal)) return;
    this.#retirer(terminal);
    if (this.nombre > 0) return;
    // Un interpréteur qui refuse de démarrer ne doit pas être relancé sans répit.
    const patience = Math.max(0, DUREE_D_UN_VRAI_USAGE - duree);
    setTimeout(() => this.nombre === 0 && this.ouvrir(), patience);
  }

  #retirer(terminal) {
    this.#liste = this.#liste.filter((autre) => autre !== terminal);
    this.quandListeChange();
  }

  // Un identifiant gardé au carnet laisse la page retrouver son onglet après un redémarrage.
  #choisirUnId(souhaite) {
    const convient = /^[\w-]{1,64}$/.test(souhaite ?? '') && !this.trouver(souhaite);
    return convient ? souhaite : randomBytes(6).toString('hex');
  }

  #choisirUnNom() {
    const pris = new Set(this.#liste.map(({ nom }) => nom));
    let numero = 1;
    while (pris.has(`Terminal ${numero}`)) numero += 1;
    return `Terminal ${numero}`;
  }
}

function nettoyer(nom) {
  if (typeof nom !== 'string') return '';
  return [...nom.replace(/\p{C}+/gu, ' ').trim()].slice(0, LONGUEUR_DES_NOMS).join('').trim();
}
