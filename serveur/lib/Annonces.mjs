import { hostname } from 'node:os';
import { fileURLToPath } from 'node:url';
import { essayer } from '../page/essayer.js';
import { Commandes } from './Commandes.mjs';
import { Messages, lireLaProgression } from './Messages.mjs';

// Plus longue, une annonce n’est ni lue ni gardée.
const VALEUR = '[^\\x07\\x18\\x1a\\x1b\\x9c]{0,4096}';
const MOTIF = new RegExp(`\\x1b\\](0|2|7|9|99|133|777);(${VALEUR})(?:\\x07|\\x1b\\\\|\\x9c)`, 'g');
const INACHEVEE = new RegExp(`\\x1b(?:\\](?:\\d{0,3}|\\d{1,3};${VALEUR}\\x1b?))?$`);

// Ce qu’un programme annonce de lui-même dans sa sortie : un titre (OSC 0 et 2), un dossier de travail (OSC 7), un message
// pour l’utilisateur (OSC 9, 99 et 777), où il en est (OSC 9;4) ; et l’interpréteur, ses commandes (OSC 133).
export class Annonces {
  titre = '';
  progression = null;
  commandes;
  #messages = new Messages();
  #quandChangement;
  #quandDossier;
  #quandAppel;
  #reste = '';

  // `quandChangement` : le titre, la progression, une commande qui commence ou finit. `quandAppel` : un message, ou la fin
  // d’une longue commande.
  constructor({ quandChangement = () => {}, quandDossier = () => {}, quandAppel = () => {}, horloge } = {}) {
    this.#quandChangement = quandChangement;
    this.#quandDossier = quandDossier;
    this.#quandAppel = quandAppel;
    this.commandes = new Commandes({ quandFin: (fin) => quandAppel({ sorte: 'fin', ...fin }), horloge });
  }

  lire(morceau) {
    if (this.#reste === '' && !morceau.includes('\x1b')) return;
    const texte = this.#reste + morceau;
    // De plusieurs messages d’un même souffle, le dernier remplacerait aussitôt les autres.
    let message = '';
    for (const [, numero, valeur] of texte.matchAll(MOTIF)) {
      if (['9', '99', '777'].includes(numero)) message = this.#lireUnMessage(numero, valeur) || message;
      else this.#lectures[numero](valeur);
    }
    if (message) this.#quandAppel({ sorte: 'message', corps: message });
    // Une annonce peut arriver en deux morceaux.
    this.#reste = INACHEVEE.exec(texte)?.[0] ?? '';
  }

  #lectures = {
    0: (titre) => this.#noter({ titre }),
    2: (titre) => this.#noter({ titre }),
    7: (adresse) => essayer(() => this.#lireLeDossier(new URL(adresse))),
    133: (valeur) => this.#lireUneCommande(valeur),
  };

  #noter(etat) {
    if (Object.entries(etat).every(([nom, valeur]) => this[nom] === valeur)) return;
    Object.assign(this, etat);
    this.#quandChangement();
  }

  #lireUnMessage(numero, valeur) {
    if (numero !== '9' || !valeur.startsWith('4;')) return this.#messages.lire(numero, valeur);
    this.#noter({ progression: lireLaProgression(valeur, this.progression) });
    return '';
  }

  // Ce qu’un programme arrêté en route laissait affiché ne dit rien de la commande qui commence.
  #lireUneCommande(valeur) {
    const { aLInvite } = this.commandes;
    this.commandes.lire(valeur);
    if (aLInvite === this.commandes.aLInvite) return;
    if (aLInvite) this.progression = null;
    this.#quandChangement();
  }

  // Une autre machine, jointe d’ici, annonce aussi ses dossiers : ils n’existent que chez elle.
  #lireLeDossier(adresse) {
    if (!['', 'localhost', hostname().toLowerCase()].includes(adresse.hostname)) return;
    adresse.hostname = '';
    this.#quandDossier(fileURLToPath(adresse));
  }
}
