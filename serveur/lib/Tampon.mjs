const BORNE = 500_000;
const MARGE = 250_000;

// Les modes privés qu’un terminal connaît : tout autre numéro ne change rien à l’écran, et il y en a sans fin.
const MODES_CONNUS = new Set([
  1, 3, 6, 7, 9, 12, 25, 45, 47, 66, 67, 1000, 1002, 1003, 1004, 1005, 1006, 1015, 1016, 1047, 1048, 1049, 2004, 2026, 2027,
].map(String));

// Ce qu’on rejoue à une page qui s’ouvre : la fin de la sortie et, de ce qui a été oublié, les modes encore en vigueur.
export class Tampon {
  #texte = '';
  #modes = new Map();

  ajouter(morceau) {
    this.#texte += morceau;
    // La marge évite de recopier tout le tampon à chaque morceau.
    if (this.#texte.length <= BORNE + MARGE) return;
    const coupe = this.#trouverUneCoupe(BORNE);
    retenirLesModes(this.#modes, this.#texte.slice(0, coupe));
    this.#texte = this.#texte.slice(coupe);
  }

  // La ligne en cours reste : l’invite, et ce qu’on y tape.
  effacer() {
    const debut = this.#texte.lastIndexOf('\n') + 1;
    retenirLesModes(this.#modes, this.#texte.slice(0, debut));
    this.#texte = this.#texte.slice(debut);
  }

  rejouer({ caracteres = BORNE, lignes = Infinity } = {}) {
    const fin = this.#texte.slice(this.#trouverUneCoupe(caracteres)).split('\n').slice(-lignes).join('\n');
    const modes = new Map(this.#modes);
    retenirLesModes(modes, this.#texte.slice(0, this.#texte.length - fin.length));
    return [...modes].map(([numero, etat]) => `\x1b[?${numero}${etat}`).join('') + fin;
  }

  // On ne coupe ni dans une ligne ni dans une séquence d’échappement, sauf si rien de tel ne se présente.
  #trouverUneCoupe(borne) {
    const debut = this.#texte.length - borne;
    if (debut <= 0) return 0;
    const coupe = debut + Math.max(this.#texte.slice(debut).search(/\n|\x1b/), 0);
    return this.#texte[coupe] === '\n' ? coupe + 1 : coupe;
  }
}

// Écran de remplacement, souris, collage encadré… : sans eux, un éditeur ouvert reviendrait dans le mauvais écran.
function retenirLesModes(modes, oublie) {
  for (const [, numeros, etat] of oublie.matchAll(/\x1b\[\?([\d;]+)([hl])/g)) {
    for (const numero of numeros.split(';')) if (MODES_CONNUS.has(numero)) modes.set(numero, etat);
  }
}
