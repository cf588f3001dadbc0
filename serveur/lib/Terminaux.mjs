import { randomBytes } from 'node:crypto';
import { Terminal } from './Terminal.mjs';

const MAXIMUM = 50;
const LONGUEUR_DES_NOMS = 60;
const DUREE_D_UN_VRAI_USAGE = 1000;
const NOM_D_OFFICE = /^Terminal \d+$/;

// Les terminaux ouverts, dans l’ordre des onglets. Il en reste toujours un, sauf pendant l’arrêt.
// Ceux qui se suivent et sont du même groupe se montrent côte à côte.
export class Terminaux {
  quandSortie = () => {};
  quandListeChange = () => {};
  #liste = [];
  #arret = null;

  get nombre() {
    return this.#liste.length;
  }

  restaurer(entrees) {
    for (const { id, nom, dossier, groupe, lignes } of entrees) {
      this.ouvrir({ id, nom, dossier, groupe: estUnId(groupe) ? groupe : nouvelId(), lignesPassees: lignes });
    }
    if (this.nombre === 0) this.ouvrir();
  }

  // Rend le terminal, ou rien quand il n’y a plus de place ici ou dans le système.
  ouvrir({ id, nom, groupe = nouvelId(), apres = this.#liste.at(-1), ...reste } = {}) {
    if (this.#arret || this.nombre >= MAXIMUM) return null;
    let terminal;
    try {
      terminal = new Terminal({ ...reste, groupe, id: this.#choisirUnId(id), nom: nettoyer(nom) || this.#choisirUnNom() });
    } catch {
      return null;
    }
    const naissance = performance.now();
    terminal.quandSortie = (texte) => this.quandSortie(terminal.id, texte);
    terminal.quandFin = () => this.#quandTerminalFini(terminal, performance.now() - naissance);
    this.#liste.splice(this.#liste.indexOf(apres) + 1, 0, terminal);
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

  // Un nom vide rend le terminal au titre que l’interpréteur lui donne.
  renommer(id, nom) {
    const terminal = this.trouver(id);
    if (!terminal || typeof nom !== 'string') return;
    terminal.nom = nettoyer(nom) || this.#choisirUnNom();
    this.quandListeChange();
  }

  deplacer(id, rang) {
    const terminal = this.trouver(id);
    if (!terminal || !Number.isInteger(rang) || rang < 0 || rang >= this.nombre) return;
    const autres = this.#liste.filter((autre) => autre !== terminal);
    const [avant, apres] = [autres[rang - 1]?.groupe, autres[rang]?.groupe];
    // Posé au milieu d’un groupe, il en est ; loin du sien, il le quitte.
    if (avant !== undefined && avant === apres) terminal.groupe = avant;
    else if (terminal.groupe !== avant && terminal.groupe !== apres) terminal.groupe = nouvelId();
    autres.splice(rang, 0, terminal);
    this.#liste = autres;
    this.quandListeChange();
  }

  // Seul, le terminal se range à côté de son voisin ; déjà à côté d’un autre, il reprend toute la place.
  accoler(id) {
    const rang = this.#liste.findIndex((terminal) => terminal.id === id);
    if (rang < 0) return;
    const terminal = this.#liste[rang];
    const voisins = [this.#liste[rang - 1], this.#liste[rang + 1]].filter(Boolean);
    const accole = voisins.some(({ groupe }) => groupe === terminal.groupe);
    terminal.groupe = accole ? nouvelId() : voisins[0]?.groupe ?? terminal.groupe;
    this.quandListeChange();
  }

  trouver(id) {
    return this.#liste.find((terminal) => terminal.id === id);
  }

  tous() {
    return [...this.#liste];
  }

  pourLaPage() {
    return this.#liste.map(({ id, nom, titre, groupe, dossier, colonnes, lignes }) => (
      { id, nom: (NOM_D_OFFICE.test(nom) && nettoyer(titre)) || nom, groupe, dossier, colonnes, lignes }
    ));
  }

  pourLeCarnet() {
    return Promise.all(this.#liste.map(async (terminal) => {
      const { id, nom, groupe, dossier } = terminal;
      return { id, nom, groupe, dossier, lignes: await terminal.dernieresLignes() };
    }));
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
    return estUnId(souhaite) && !this.trouver(souhaite) ? souhaite : nouvelId();
  }

  #choisirUnNom() {
    const pris = new Set(this.#liste.map(({ nom }) => nom));
    let numero = 1;
    while (pris.has(`Terminal ${numero}`)) numero += 1;
    return `Terminal ${numero}`;
  }
}

function nouvelId() {
  return randomBytes(6).toString('hex');
}

function estUnId(valeur) {
  return typeof valeur === 'string' && /^[\w-]{1,64}$/.test(valeur);
}

function nettoyer(nom) {
  if (typeof nom !== 'string') return '';
  return [...nom.replace(/\p{C}+/gu, ' ').trim()].slice(0, LONGUEUR_DES_NOMS).join('').trim();
}
