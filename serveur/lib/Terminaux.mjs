import { randomBytes } from 'node:crypto';
import { setImmediate as cederLaMain } from 'node:timers/promises';
import { essayer } from '../page/essayer.js';
import { accorder, estUneDivision, repartir } from './divisions.mjs';
import { etiqueter, numeroDOffice } from './etiquettes.mjs';
import { Terminal } from './Terminal.mjs';

const MAXIMUM = 50;
const LONGUEUR_DES_NOMS = 60;
const DUREE_D_UN_VRAI_USAGE = 1000;
// En millisecondes.
const DELAI_D_UN_RELEVE = 500;
const DELAI_D_UNE_ANNONCE = 100;

const nouvelId = () => randomBytes(6).toString('hex');
const estUnId = (valeur) => typeof valeur === 'string' && /^[\w-]{1,64}$/.test(valeur);

// Les terminaux, dans l’ordre des onglets. Il en reste toujours un, sauf pendant l’arrêt ; éteint, quand le système n’a
// pas de quoi l’ouvrir. Ceux qui se suivent et sont du même groupe se montrent ensemble, comme le dit sa division.
//
// `quandListeChange` : ce que montre une page. `quandRangementChange` : noms, dossiers et ordre, que garde le carnet.
export class Terminaux {
  quandSortie = () => {};
  quandAppel = () => {};
  quandListeChange = () => {};
  quandRangementChange = () => {};
  liste = [];
  #enArret = false;
  #releve = null;
  #heureDuReleve = Infinity;
  #listeRelevee = '';
  #rangementReleve = '';
  #divisions = new Map();

  // Ce qui ne peut pas s’ouvrir reste, éteint, tel que le carnet l’a gardé.
  restaurer(entrees) {
    for (const { id, nom, dossier, groupe, division, lignes } of entrees) {
      if (essayer(() => estUneDivision(division))) this.#divisions.set(groupe, division);
      this.#allumer(this.#creer({ id, nom, dossier, groupe: estUnId(groupe) ? groupe : nouvelId(), lignesPassees: lignes }));
    }
    this.#garderUnTerminal();
    this.relever();
  }

  // Rend le terminal, ou rien quand il n’y a plus de place ici ou dans le système.
  ouvrir({ apres, sens, ...description } = {}) {
    const terminal = this.#creer(description, apres);
    const allume = this.#allumer(terminal);
    if (allume) this.relever({ sens });
    else this.#oter(terminal);
    return allume ? terminal : null;
  }

  // Faux quand il n’y a toujours pas de place.
  rouvrir(terminal) {
    const allume = this.#allumer(terminal);
    this.relever();
    return allume;
  }

  fermer(terminal) {
    this.#oter(terminal);
    terminal.raccrocher();
    this.#garderUnTerminal();
    this.relever();
  }

  // Un nom vide rend le terminal au titre que l’interpréteur lui donne.
  renommer(terminal, nom) {
    if (typeof nom !== 'string') return;
    terminal.nom = nettoyer(nom) || this.#choisirUnNom();
    this.relever();
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
    this.relever();
  }

  // Seul, le terminal se range à côté de son voisin ; déjà à côté d’un autre, il reprend toute la place.
  accoler(terminal) {
    const rang = this.liste.indexOf(terminal);
    const voisins = [this.liste[rang - 1], this.liste[rang + 1]].filter(Boolean);
    const accole = voisins.some(({ groupe }) => groupe === terminal.groupe);
    terminal.groupe = accole ? nouvelId() : voisins[0]?.groupe ?? terminal.groupe;
    this.relever();
  }

  repartir({ groupe }, chemin, parts) {
    if (!this.#divisions.has(groupe) || !Array.isArray(chemin)) return;
    this.#divisions.set(groupe, repartir(this.#divisions.get(groupe), chemin, parts));
    this.relever();
  }

  trouver(id) {
    return this.liste.find((terminal) => terminal.id === id);
  }

  pourLaPage() {
    return this.liste.map((terminal) => {
      const { id, nom, annonces: { progression, commandes }, groupe, dossier, colonnes, lignes, ouvert } = terminal;
      const [titre, numero] = [nettoyer(terminal.annonces.titre), numeroDOffice(nom)];
      return {
        id, nom: (numero > 0 && titre) || nom, groupe, dossier, colonnes, lignes, ouvert, progression, numero,
        etiquette: etiqueter({ nom, titre, programme: terminal.programmeVu, dossier }),
        aLInvite: commandes.aLInvite, division: this.#divisions.get(groupe),
      };
    });
  }

  // L’un après l’autre : relire vingt terminaux d’un trait retarderait les touches.
  async pourLeCarnet({ relireLesLignes }) {
    const entrees = [];
    for (const terminal of this.liste) {
      entrees.push({ ...this.#ranger(terminal), lignes: await terminal.dernieresLignes({ relire: relireLesLignes }) });
      await cederLaMain();
    }
    return entrees;
  }

  // Tenue quand tous les interpréteurs ont fini ; l’appelant décide combien de temps il attend.
  raccrocher() {
    this.#enArret = true;
    clearTimeout(this.#releve);
    return Promise.all(this.liste.filter(({ ouvert }) => ouvert).map((terminal) => new Promise((suite) => {
      terminal.quandFin = suite;
      terminal.raccrocher();
    })));
  }

  #creer({ id, nom, groupe = nouvelId(), ...reste }, apres = this.liste.at(-1)) {
    // Un identifiant gardé au carnet laisse la page retrouver son onglet après un redémarrage.
    const sien = estUnId(id) && !this.trouver(id) ? id : nouvelId();
    const terminal = new Terminal({ id: sien, nom: nettoyer(nom) || this.#choisirUnNom(), groupe, ...reste });
    terminal.quandAnnonce = () => this.#prevoirUnReleve(DELAI_D_UNE_ANNONCE);
    terminal.quandAppel = (appel) => this.quandAppel(terminal, appel);
    terminal.quandSortie = (texte) => {
      // L’interpréteur a pu changer de dossier, ce qu’il n’annonce pas.
      this.#prevoirUnReleve(DELAI_D_UN_RELEVE);
      this.quandSortie(terminal, texte);
    };
    this.liste.splice(this.liste.indexOf(apres) + 1, 0, terminal);
    return terminal;
  }

  #garderUnTerminal() {
    if (this.liste.length === 0 && !this.#enArret) this.#allumer(this.#creer({}));
  }

  #allumer(terminal) {
    if (terminal.ouvert) return true;
    if (this.#enArret || this.liste.filter(({ ouvert }) => ouvert).length >= MAXIMUM) return false;
    const naissance = performance.now();
    terminal.quandFin = () => this.#quandTerminalFini(terminal, performance.now() - naissance);
    return essayer(() => terminal.ouvrir() ?? true, false);
  }

  #quandTerminalFini(terminal, duree) {
    if (!this.liste.includes(terminal)) return;
    this.#oter(terminal);
    this.relever();
    // Un interpréteur qui refuse de démarrer ne doit pas être relancé sans répit.
    const patience = Math.max(0, DUREE_D_UN_VRAI_USAGE - duree);
    setTimeout(() => {
      this.#garderUnTerminal();
      this.relever();
    }, patience);
  }

  #oter(terminal) {
    this.liste = this.liste.filter((autre) => autre !== terminal);
  }

  #prevoirUnReleve(delai) {
    const heure = performance.now() + delai;
    if (this.#enArret || heure >= this.#heureDuReleve) return;
    clearTimeout(this.#releve);
    this.#heureDuReleve = heure;
    this.#releve = setTimeout(() => this.relever(), delai);
  }

  // Dit à chacun ce qui a changé pour lui, et rien d’autre : un titre n’est pas gardé, une ligne ne se montre pas ici.
  // Une page qui vient se fait décrire la liste juste après : les autres et elle en sont alors au même point.
  relever({ sens } = {}) {
    this.#accorder(sens);
    clearTimeout(this.#releve);
    this.#heureDuReleve = Infinity;
    const [liste, rangement] = [this.pourLaPage(), this.liste.map((terminal) => this.#ranger(terminal))].map((valeur) => JSON.stringify(valeur));
    const [listeChange, rangementChange] = [liste !== this.#listeRelevee, rangement !== this.#rangementReleve];
    this.#listeRelevee = liste;
    this.#rangementReleve = rangement;
    if (listeChange) this.quandListeChange();
    if (rangementChange) this.quandRangementChange();
    // Le programme qui vient d’être lancé n’a peut-être encore rien écrit.
    if (this.liste.some(({ vientDeParler }) => vientDeParler)) this.#prevoirUnReleve(DELAI_D_UN_RELEVE);
  }

  #ranger({ id, nom, groupe, dossier }) {
    return { id, nom, groupe, dossier, division: this.#divisions.get(groupe) };
  }

  // L’un des siens peut couper un groupe en partant seul : ce qui le suit en est alors un autre.
  #accorder(sens) {
    const groupes = new Map();
    let [avant, groupe] = [];
    for (const terminal of this.liste) {
      if (terminal.groupe !== avant) groupe = groupes.has(terminal.groupe) ? nouvelId() : terminal.groupe;
      avant = terminal.groupe;
      terminal.groupe = groupe;
      groupes.set(groupe, [...(groupes.get(groupe) ?? []), terminal.id]);
    }
    const plusieurs = [...groupes].filter(([, ids]) => ids.length > 1);
    this.#divisions = new Map(plusieurs.map(([cle, ids]) => [cle, accorder(this.#divisions.get(cle), ids, sens)]));
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
