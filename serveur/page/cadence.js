// En millisecondes, entre deux dessins d’une inondation : quinze par seconde suffisent à voir qu’on ne peut rien lire.
const REPIT = 66;

// Quand dessiner : tout de suite, pour que l’écho d’une touche n’attende pas l’image suivante ; mais une fois par image au
// plus, et moins encore sous une inondation, dont le reste passerait sans être vu. Prend la place de l’ordonnanceur du
// terminal. `inonde` : de ce que montre le dernier dessin, plus rien n’est à l’écran.
export class Cadence {
  #dessiner;
  #inonde;
  #debut = Infinity;
  #fin = -1;
  #suivant = null;
  #rappels = [];

  constructor(dessiner, inonde) {
    this.#dessiner = dessiner;
    this.#inonde = inonde;
  }

  refresh(debut, fin, lignes) {
    this.#debut = Math.min(this.#debut, debut ?? 0);
    this.#fin = Math.max(this.#fin, fin ?? lignes - 1);
    if (this.#suivant !== null) return;
    this.#attendre();
    this.#vider();
  }

  addRefreshCallback(rappel) {
    this.#rappels.push(rappel);
    this.#attendre();
    return this.#suivant;
  }

  // Ce qui était demandé ne se dessine plus : le terminal n’est plus là.
  arreter() {
    this.#dessiner = () => {};
    this.#rappels = [];
  }

  // Une image demandée en est une que le moteur compose et que la fenêtre recopie, même si rien n’y a changé.
  #attendre(inondee = false) {
    this.#suivant ??= inondee ? setTimeout(() => this.#reprendre(), REPIT) : requestAnimationFrame(() => this.#reprendre());
  }

  #reprendre() {
    this.#suivant = null;
    if (this.#fin >= 0) {
      this.#attendre(this.#inonde());
      this.#vider();
    }
    for (const rappel of this.#rappels.splice(0)) rappel();
  }

  #vider() {
    const [debut, fin] = [this.#debut, this.#fin];
    this.#debut = Infinity;
    this.#fin = -1;
    this.#dessiner(debut, fin);
  }
}
