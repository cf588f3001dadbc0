import { hostname } from 'node:os';
import { fileURLToPath } from 'node:url';
import { essayer } from '../page/essayer.js';

const MOTIF = /\x1b\](0|2|7);([^\x07\x1b]*)(?:\x07|\x1b\\)/g;
const INACHEVEE = /\x1b(?:\](?:[027](?:;[^\x07\x1b]{0,4096}\x1b?)?)?)?$/;

// Ce qu’un programme annonce de lui-même dans sa sortie : un titre (OSC 0 et 2), un dossier de travail (OSC 7).
export class Annonces {
  titre = '';
  #quandTitre;
  #quandDossier;
  #reste = '';

  constructor({ quandTitre = () => {}, quandDossier = () => {} } = {}) {
    this.#quandTitre = quandTitre;
    this.#quandDossier = quandDossier;
  }

  lire(morceau) {
    if (this.#reste === '' && !morceau.includes('\x1b')) return;
    const texte = this.#reste + morceau;
    for (const [, numero, valeur] of texte.matchAll(MOTIF)) {
      if (numero !== '7') this.#noterLeTitre(valeur);
      else essayer(() => this.#lireLeDossier(new URL(valeur)));
    }
    // Une annonce peut arriver en deux morceaux.
    this.#reste = INACHEVEE.exec(texte)?.[0] ?? '';
  }

  #noterLeTitre(titre) {
    if (titre === this.titre) return;
    this.titre = titre;
    this.#quandTitre();
  }

  // Une autre machine, jointe d’ici, annonce aussi ses dossiers : ils n’existent que chez elle.
  #lireLeDossier(adresse) {
    if (!['', 'localhost', hostname().toLowerCase()].includes(adresse.hostname)) return;
    adresse.hostname = '';
    this.#quandDossier(fileURLToPath(adresse));
  }
}
