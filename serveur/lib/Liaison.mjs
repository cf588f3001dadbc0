import { WebSocketServer } from 'ws';
import { jetonJuste, raisonDuRefus } from './acces.mjs';
import { PageReliee } from './PageReliee.mjs';

const ROUTE = '/terminaux';
const TAILLE_MAXIMALE = 1024 * 1024;
const DELAI_DU_JETON = 5000;
// En caractères envoyés à une page et dont elle n’a pas encore accusé réception.
const RETARD_HAUT = 256 * 1024;
const RETARD_BAS = 64 * 1024;
// En octets, tous terminaux ensemble.
const RETARD_ABANDON = 32 * 1024 * 1024;

const CODE_ARRET = 1001;
const CODE_ILLISIBLE = 4400;
const CODE_JETON = 4401;

// Relie les pages ouvertes aux terminaux, et retient un terminal bavard tant qu’aucune page ne suit.
export class Liaison {
  #portier = new WebSocketServer({ noServer: true, maxPayload: TAILLE_MAXIMALE });
  #pages = new Set();
  #terminaux;
  #jeton;
  #listeDite = '';
  #avis = [];

  constructor({ terminaux, jeton }) {
    this.#terminaux = terminaux;
    this.#jeton = jeton;
  }

  accueillir(requete, prise, tete) {
    prise.on('error', () => prise.destroy());
    const raison = raisonDuRefus(requete, { origineExigee: true });
    if (raison) return refuser(prise, '403 Forbidden', raison);
    if (requete.url !== ROUTE) return refuser(prise, '404 Not Found', 'Rien à cette adresse.');
    this.#portier.handleUpgrade(requete, prise, tete, (socket) => this.#attendreLeJeton(socket));
  }

  // Un titre ou un dossier change sans bruit : on compare.
  diffuserLaListe() {
    const liste = { type: 'liste', terminaux: this.#terminaux.pourLaPage() };
    const dite = JSON.stringify(liste);
    if (dite === this.#listeDite) return;
    this.#listeDite = dite;
    for (const page of this.#pages) page.envoyer(liste);
  }

  // Une seule fois : aux pages ouvertes, sinon à la première qui viendra.
  aviser(texte) {
    if (this.#pages.size === 0) this.#avis.push(texte);
    for (const page of this.#pages) page.envoyer({ type: 'avis', texte });
  }

  diffuserLaSortie(id, texte) {
    for (const page of this.#pages) {
      page.envoyerDuTexte('sortie', id, texte);
      // Celle-là ne suit plus du tout alors qu’une autre suit : elle reviendra avec une reprise, bien plus courte.
      if (page.enAttente > RETARD_ABANDON) page.couper();
    }
    this.#reglerLeDebit(id);
  }

  fermer() {
    for (const socket of this.#portier.clients) socket.close(CODE_ARRET);
  }

  // Le jeton vient en premier message : dans l’adresse, il finirait dans des journaux.
  #attendreLeJeton(socket) {
    const minuteur = setTimeout(() => socket.close(CODE_JETON), DELAI_DU_JETON);
    socket.on('error', () => socket.terminate());
    socket.on('close', () => clearTimeout(minuteur));
    socket.once('message', (donnees) => {
      clearTimeout(minuteur);
      const message = lireMessage(donnees);
      if (message?.type !== 'bonjour' || !jetonJuste(message.jeton, this.#jeton)) return socket.close(CODE_JETON);
      this.#recevoir(socket);
    });
  }

  #recevoir(socket) {
    const page = new PageReliee(socket, this.#terminaux);
    page.quandAvance = (id) => this.#reglerLeDebit(id);
    socket.on('message', (donnees) => {
      const message = lireMessage(donnees);
      if (message) page.traiter(message);
      else socket.close(CODE_ILLISIBLE);
    });
    socket.on('close', () => this.#quitter(page));
    page.presenter();
    this.#pages.add(page);
    for (const texte of this.#avis.splice(0)) this.aviser(texte);
  }

  #quitter(page) {
    this.#pages.delete(page);
    for (const { id } of this.#terminaux.tous()) this.#reglerLeDebit(id);
  }

  // La page la plus rapide donne l’allure ; sans page, le terminal avance et seul son tampon borné est gardé.
  #reglerLeDebit(id) {
    const terminal = this.#terminaux.trouver(id);
    if (!terminal) return;
    const retard = this.#pages.size === 0 ? 0 : Math.min(...[...this.#pages].map((page) => page.retard(id)));
    if (retard > RETARD_HAUT) terminal.suspendre(true);
    else if (retard < RETARD_BAS) terminal.suspendre(false);
  }
}

function refuser(prise, statut, raison) {
  const entetes = `Connection: close\r\nContent-Type: text/plain; charset=utf-8`;
  prise.end(`HTTP/1.1 ${statut}\r\n${entetes}\r\n\r\n${raison}\n`);
}

function lireMessage(donnees) {
  try {
    const message = JSON.parse(donnees);
    return typeof message?.type === 'string' ? message : null;
  } catch {
    return null;
  }
}
