import { randomBytes } from 'node:crypto';
import { essayer } from '../page/essayer.js';
import { Terminal } from './Terminal.mjs';

const MAXIMUM = 50;
const LONGUEUR_DES_NOMS = 60;
const DUREE_D_UN_VRAI_USAGE = 1000;
const NOM_D_OFFICE = /^Terminal \d+$/;

const nouvelId = () => randomBytes(6).toString('hex');
const estUnId = (valeur) => typeof valeur === 'string' && /^[\w-]{1,64}$/.test(valeur);

// Les terminaux ouverts, dans l’ordre des onglets. Il en reste toujours un, sauf pendant l’arrêt.
// Ceux qui se suivent et sont du même groupe se montrent côte à côte.
export class Terminaux {
  quandSortie = () => {};
  quandListeChange = () => {};
  liste = [];
  #enArret = false;

  restaurer(entrees) {
    for (const { id, nom, dossier, groupe, lignes } of entrees) {
      this.ouvrir({ id, nom, dossier, groupe: estUnId(groupe) ? groupe : nouvelId(), lignesPassees: lignes });
    }
    if (this.liste.length === 0) this.ouvrir();
  }

  // Rend le terminal, ou rien quand il n’y a plus de place ici ou dans le système.
  ouvrir({ id, nom, groupe = nouvelId(), apres = this.liste.at(-1), ...reste } = {}) {
    if (this.#enArret || this.liste.length >= MAXIMUM) return null;
    // Un identifiant gardé au carnet laisse la page retrouver son onglet après un redémarrage.
    const sien = estUnId(id) && !this.trouver(id) ? id : nouvelId();
    const identite = { id: sien, nom: nettoyer(nom) || this.#choisirUnNom(), groupe };
    const terminal = essayer(() => new Terminal({ ...identite, ...reste }));
    if (!terminal) return null;
    const naissance = performance.now();
    terminal.quandSortie = (texte) => this.quandSortie(terminal, texte);
    terminal.quandFin = () => this.#quandTerminalFini(terminal, performance.now() - naissance);
    this.liste.splice(this.liste.indexOf(apres) + 1, 0, terminal);
    this.quandListeChange();
    return terminal;
  }

  fermer(terminal) {
    this.#retirer(terminal);
    terminal.raccrocher();
    if (this.liste.length === 0) this.ouvrir();
  }

  // Un nom vide rend le terminal au titre que l’interpréteur lui donne.
  renommer(terminal, nom) {
    if (typeof nom !== 'string') return;
    terminal.nom = nettoyer(nom) || this.#choisirUnNom();
    this.quandListeChange();
  }

  deplacer(terminal, rang) {
    if (!Number.isInteger(rang) || rang < 0 || rang >= this.liste.length) return;
    const autres = this.liste.filter((autre) => autre !== terminal);
    const [avant, apres] = [autres[rang - 1]?.groupe, autres[rang]?.groupe];
    // Posé au milieu d’un groupe, il en est ; loin du sien, il le quitte.
    if (avant !== undefined && avant === apres) terminal.groupe = avant;
    else if (terminal.groupe !== avant && terminal.groupe !== apres) terminal.groupe = nouvelId();
    autres.splice(rang, 0, terminal);
    this.liste = autres;
    this.quandListeChange();
  }

  // Seul, le terminal se range à côté de son voisin ; déjà à côté d’un autre, il reprend toute la place.
  accoler(terminal) {
    const rang = this.liste.indexOf(terminal);
    const voisins = [this.liste[rang - 1], this.liste[rang + 1]].filter(Boolean);
    const accole = voisins.some(({ groupe }) => groupe === terminal.groupe);
    terminal.groupe = accole ? nouvelId() : voisins[0]?.groupe ?? terminal.groupe;
    this.quandListeChange();
  }

  trouver(id) {
    return this.liste.find((terminal) => terminal.id === id);
  }

  pourLaPage() {
    return this.liste.map(({ id, nom, annonces: { titre }, groupe, dossier, colonnes, lignes }) => (
      { id, nom: (NOM_D_OFFICE.test(nom) && nettoyer(titre)) || nom, groupe, dossier, colonnes, lignes }
    ));
  }

  pourLeCarnet() {
    return Promise.all(this.liste.map(async (terminal) => {
      const { id, nom, groupe, dossier } = terminal;
      return { id, nom, groupe, dossier, lignes: await terminal.dernieresLignes() };
    }));
  }

  // Tenue quand tous les interpréteurs ont fini ; l’appelant décide combien de temps il attend.
  raccrocher() {
    this.#enArret = true;
    return Promise.all(this.liste.map((terminal) => new Promise((suite) => {
      terminal.quandFin = suite;
      terminal.raccrocher();
    })));
  }

  #quandTerminalFini(terminal, duree) {
    if (!this.liste.includes(terminal)) return;
    this.#retirer(terminal);
    // Un interpréteur qui refuse de démarrer ne doit pas être relancé sans répit.
    const patience = Math.max(0, DUREE_D_UN_VRAI_USAGE - duree);
    setTimeout(() => this.liste.length === 0 && this.ouvrir(), patience);
  }

  #retirer(terminal) {
    this.liste = this.liste.filter((autre) => autre !== terminal);
    this.quandListeChange();
  }

  #choisirUnNom() {
    const noms = Array.from({ length: MAXIMUM + 1 }, (_, rang) => `Terminal ${rang + 1}`);
    return noms.find((nom) => this.liste.every((terminal) => terminal.nom !== nom));
  }
}

function nettoyer(nom) {
  if (typeof nom !== 'string') return '';
  return [...nom.replace(/\p{C}+/gu, ' ').trim()].slice(0, LONGUEUR_DES_NOMS).join('').trim();
}
