import { createHmac } from 'node:crypto';
import { WebSocket, WebSocketServer } from 'ws';
import { essayer } from '../page/essayer.js';
import { jetonJuste, raisonDuRefus } from './acces.mjs';
import { Arriere } from './Arriere.mjs';
import { estUnSens } from './divisions.mjs';
import { editer, trouverLesFichiers } from './editeur.mjs';
import { enregistrerLHistorique } from './historique.mjs';
import { choisirUnInterpreteur, lireLesInterpreteurs } from './interpreteurs.mjs';

const TAILLE_MAXIMALE = 1024 * 1024;
const DELAI_DU_JETON = 5000;
// En caractères qu’une page n’a pas encore lus.
const RETARD_HAUT = 256 * 1024;
const RETARD_BAS = 128 * 1024;
// En octets, tous terminaux ensemble.
const RETARD_ABANDON = 32 * 1024 * 1024;
// En caractères : cent mille lignes de mille colonnes, et de la marge.
const HISTORIQUE_MAXIMAL = 128 * 1024 * 1024;

const SANS_PLACE = 'Le système n’a pas de quoi ouvrir un terminal de plus. Fermez des programmes, puis réessayez.';
const estUnNombre = (valeur) => Number.isInteger(valeur) && valeur > 0;
const CODES = { arret: 1001, illisible: 4400, jeton: 4401 };

// Relie les pages ouvertes aux terminaux, et retient un terminal bavard tant qu’aucune page ne suit.
export class Liaison {
  #portier;
  #terminaux;
  #pages = new Set();
  // La page où l’on a agi en dernier : elle seule répond aux questions que des programmes posent au terminal.
  #interlocutrice = null;
  #avis = [];
  #alerte = null;

  // `quandReconnue(prise)` : une page y a montré le jeton.
  constructor({ serveur, terminaux, jeton, quandReconnue }) {
    this.#terminaux = terminaux;
    const portier = { server: serveur, maxPayload: TAILLE_MAXIMALE, verifyClient: verifier, WebSocket: Page };
    this.#portier = new WebSocketServer(portier).on('connection', (page, { socket }) => {
      this.#attendreLeJeton(page, jeton, () => quandReconnue(socket));
    });
  }

  diffuserLaListe() {
    for (const page of this.#pages) page.oublierSauf(this.#terminaux.liste);
    this.#diffuser({ type: 'liste', terminaux: this.#terminaux.pourLaPage() });
  }

  // Ce qui ne va pas et dure : aux pages ouvertes et à venir, jusqu’à ce que l’on rappelle sans texte. Vrai si c’est neuf.
  alerter(texte) {
    if (texte === this.#alerte) return false;
    this.#alerte = texte;
    this.#diffuser({ type: 'alerte', texte });
    return true;
  }

  // Une seule fois : aux pages ouvertes, sinon à la première qui viendra.
  aviser(texte) {
    if (this.#pages.size === 0) this.#avis.push(texte);
    this.#diffuser({ type: 'avis', texte });
  }

  // Sans page ouverte, personne n’est là pour l’entendre : il est perdu.
  diffuserUnAppel(terminal, appel) {
    this.#diffuser({ type: 'appel', id: terminal.id, ...appel });
  }

  diffuserLaSortie(terminal, texte) {
    for (const page of this.#pages) {
      page.arriere(terminal).ajouter(texte);
      // Celle-là ne suit plus du tout alors qu’une autre suit : elle reviendra avec une reprise, bien plus courte. Sans
      // adieu : un adieu attendrait derrière tout ce que la page n’a pas encore lu.
      if (page.bufferedAmount - page.reprise + page.enAttente > RETARD_ABANDON) page.terminate();
    }
    this.#reglerLeDebit(terminal);
  }

  fermer() {
    for (const page of this.#portier.clients) page.close(CODES.arret);
  }

  #diffuser(message) {
    for (const page of this.#pages) page.envoyer(message);
  }

  // Le jeton vient en premier message : dans l’adresse, il finirait dans des journaux. Une page qui renoue demande d’abord
  // une preuve qu’elle parle bien à qui le connaît.
  #attendreLeJeton(page, jeton, quandReconnue) {
    const minuteur = setTimeout(() => page.close(CODES.jeton), DELAI_DU_JETON);
    page.on('error', () => page.terminate());
    page.on('close', () => clearTimeout(minuteur));
    page.once('message', (donnees) => {
      const message = lireMessage(donnees);
      if (message?.type !== 'defi') return this.#saluer(page, message, { minuteur, jeton, quandReconnue });
      page.envoyer({ type: 'preuve', preuve: createHmac('sha256', jeton).update(String(message.defi)).digest('hex') });
      page.once('message', (suite) => this.#saluer(page, lireMessage(suite), { minuteur, jeton, quandReconnue }));
    });
  }

  #saluer(page, message, { minuteur, jeton, quandReconnue }) {
    clearTimeout(minuteur);
    if (message?.type !== 'bonjour' || !jetonJuste(message.jeton, jeton)) return page.close(CODES.jeton);
    quandReconnue();
    this.#recevoir(page);
  }

  #recevoir(page) {
    page.on('message', (donnees) => {
      const message = lireMessage(donnees);
      if (!message) return page.close(CODES.illisible);
      const terminal = this.#terminaux.trouver(message.id);
      if (message.type === 'ouvrir') this.#ouvrir(message, page);
      else if (message.type === 'interpreteur') this.#choisirUnInterpreteur(message, page);
      // Un type inconnu est ignoré : une page d’une autre version ne doit pas être coupée pour autant.
      else if (terminal) this.#demandes.get(message.type)?.(terminal, message, page);
    });
    page.on('close', () => {
      this.#pages.delete(page);
      if (this.#interlocutrice === page) this.#interlocutrice = null;
      for (const terminal of this.#terminaux.liste) this.#reglerLeDebit(terminal);
    });
    this.#terminaux.relever();
    page.envoyer({ type: 'accueil', terminaux: this.#terminaux.pourLaPage(), alerte: this.#alerte });
    page.envoyer({ type: 'interpreteurs', ...lireLesInterpreteurs() });
    for (const terminal of this.#terminaux.liste) page.arriere(terminal).reprendre(terminal.tampon.rejouer());
    page.reprise = page.bufferedAmount;
    this.#pages.add(page);
    for (const texte of this.#avis.splice(0)) this.aviser(texte);
  }

  // Un terminal neuf s’ouvre dans le dossier de celui d’où on le demande, et à côté ou au-dessous de lui si on le veut.
  #ouvrir({ colonnes, lignes, depuis, aCote, sens }, page) {
    const voisin = this.#terminaux.trouver(depuis);
    const place = aCote === true && voisin ? { apres: voisin, groupe: voisin.groupe, sens: estUnSens(sens) ? sens : 'colonnes' } : {};
    const terminal = this.#terminaux.ouvrir({ colonnes, lignes, dossier: voisin?.dossier, ...place });
    if (terminal) page.envoyer({ type: 'ouvert', id: terminal.id });
    else page.envoyer({ type: 'avis', texte: SANS_PLACE });
  }

  async #choisirUnInterpreteur({ chemin }, page) {
    const refus = ({ message }) => page.envoyer({ type: 'avis', texte: `Votre choix n’a pas pu être gardé : ${message}` });
    await choisirUnInterpreteur(chemin).catch(refus);
    this.#diffuser({ type: 'interpreteurs', ...lireLesInterpreteurs() });
  }

  #saisir(terminal, { id, texte }, page) {
    if (typeof texte !== 'string') return;
    const gardee = terminal.saisir(texte, () => page.envoyer({ type: 'lu', id, nombre: texte.length }));
    if (!gardee) this.#abandonner(terminal);
  }

  // Un programme qui ne lit plus : la moitié d’un collage lui ferait plus de mal que rien du tout.
  #abandonner(terminal) {
    terminal.oublierLaSaisie();
    this.#diffuser({ type: 'sourd', id: terminal.id });
  }

  #demandes = new Map(Object.entries({
    fermer: (terminal, { id, certain }, page) => {
      const programme = certain === true ? null : terminal.programme;
      if (programme) page.envoyer({ type: 'occupe', id, programme });
      else this.#terminaux.fermer(terminal);
    },
    rouvrir: (terminal, _, page) => {
      if (!this.#terminaux.rouvrir(terminal)) page.envoyer({ type: 'avis', texte: SANS_PLACE });
    },
    saisie: (terminal, message, page) => {
      this.#interlocutrice = page;
      terminal.noterUneFrappe();
      this.#saisir(terminal, message, page);
    },
    reponse: (terminal, message, page) => {
      if ((this.#interlocutrice ??= page) === page) this.#saisir(terminal, message, page);
    },
    abandon: (terminal) => this.#abandonner(terminal),
    taille: (terminal, { colonnes, lignes }) => terminal.dimensionner(colonnes, lignes),
    renommer: (terminal, { nom }) => this.#terminaux.renommer(terminal, nom),
    deplacer: (terminal, { rang }) => this.#terminaux.deplacer(terminal, rang),
    effacer: (terminal) => {
      terminal.effacer();
      this.#diffuser({ type: 'effacer', id: terminal.id });
    },
    accoler: (terminal) => this.#terminaux.accoler(terminal),
    repartir: (terminal, { chemin, parts }) => this.#terminaux.repartir(terminal, chemin, parts),
    // Un historique entier ne tiendrait pas dans un message.
    historique: (_, { texte }, page) => {
      page.historique += typeof texte === 'string' ? texte : '';
      if (page.historique.length > HISTORIQUE_MAXIMAL) page.close(CODES.illisible);
    },
    enregistrer: async (_, { nom }, page) => {
      const texte = page.historique;
      page.historique = '';
      page.envoyer({ type: 'avis', texte: await enregistrerLHistorique(nom, texte) });
    },
    chemins: async ({ dossier }, { demande, chemins }, page) => {
      page.envoyer({ type: 'chemins', demande, existent: (await trouverLesFichiers(chemins, dossier)).map(Boolean) });
    },
    editer: async ({ dossier }, message, page) => {
      const texte = await editer({ ...message, dossier }).catch((erreur) => `Ce fichier ne s’ouvre pas : ${erreur.message}`);
      if (texte) page.envoyer({ type: 'avis', texte });
    },
    recu: (terminal, { nombre, lignesGardees }, page) => {
      if (estUnNombre(nombre)) page.arriere(terminal).lu(nombre, estUnNombre(lignesGardees) ? lignesGardees : null);
      this.#reglerLeDebit(terminal);
    },
  }));

  // La page la plus rapide donne l’allure ; sans page, le terminal avance et seul son tampon borné est gardé.
  #reglerLeDebit(terminal) {
    const retards = [...this.#pages].map((page) => page.arriere(terminal).retard);
    const retard = retards.length === 0 ? 0 : Math.min(...retards);
    if (retard > RETARD_HAUT) terminal.suspendre(true);
    else if (retard < RETARD_BAS) terminal.suspendre(false);
  }
}

// Une page connectée, et ce qu’elle n’a pas encore lu de chaque terminal.
class Page extends WebSocket {
  // Ce que la reprise lui laisse à lire, en octets.
  reprise = 0;
  // Ce qu’elle a déjà donné de l’historique qu’elle enregistre.
  historique = '';
  #arrieres = new Map();

  arriere(terminal) {
    const { id } = terminal;
    if (!this.#arrieres.has(terminal)) this.#arrieres.set(terminal, new Arriere((type, texte) => this.envoyer({ type, id, texte })));
    return this.#arrieres.get(terminal);
  }

  oublierSauf(terminaux) {
    for (const terminal of this.#arrieres.keys()) if (!terminaux.includes(terminal)) this.#arrieres.delete(terminal);
  }

  get enAttente() {
    return [...this.#arrieres.values()].reduce((somme, { enAttente }) => somme + enAttente, 0);
  }

  envoyer(message) {
    this.send(JSON.stringify(message), () => {});
  }
}

function verifier({ req }, rendre) {
  const raison = raisonDuRefus(req, { origineExigee: true });
  const entetes = { 'Content-Type': 'text/plain; charset=utf-8' };
  if (raison) rendre(false, 403, `${raison}\n`, entetes);
  else rendre(req.url === '/terminaux', 404, 'Rien à cette adresse.\n', entetes);
}

function lireMessage(donnees) {
  const message = essayer(() => JSON.parse(donnees));
  return typeof message?.type === 'string' ? message : null;
}
