const BORNE = 200_000;
const MARGE = 50_000;

// Ce qu’il faut rejouer à une page qui s’ouvre : la fin de la sortie et, de ce qui a été oublié, les modes encore en vigueur.
export class Tampon {
  #texte = '';
  #modes = new Map();

  ajouter(morceau) {
    this.#texte += morceau;
    // La marge évite de recopier tout le tampon à chaque morceau.
    if (this.#texte.length > BORNE + MARGE) this.#raccourcir();
  }

  rejouer() {
    let modes = '';
    for (const [numero, etat] of this.#modes) modes += `\x1b[?${numero}${etat}`;
    return modes + this.#texte;
  }

  // On ne coupe ni dans une ligne ni dans une séquence d’échappement, sauf si rien de tel ne se présente.
  #raccourcir() {
    const debut = this.#texte.length - BORNE;
    const repere = this.#texte.slice(debut).search(/\n|\x1b/);
    let coupe = debut + Math.max(repere, 0);
    if (this.#texte[coupe] === '\n') coupe += 1;
    this.#retenirLesModes(this.#texte.slice(0, coupe));
    this.#texte = this.#texte.slice(coupe);
  }

  // Écran de remplacement, souris, collage encadré… : sans eux, un éditeur ouvert reviendrait dans le mauvais écran.
  #retenirLesModes(oublie) {
    for (const [, numeros, etat] of oublie.matchAll(/\x1b\[\?([\d;]+)([hl])/g)) {
      for (const numero of numeros.split(';')) this.#modes.set(numero, etat);
    }
  }
}
