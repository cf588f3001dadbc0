// Quand dessiner : tout de suite, pour que l’écho d’une touche n’attende pas l’image suivante ; mais une fois par image au
// plus, car le reste d’une inondation passerait sans être vu. Prend la place de l’ordonnanceur du terminal.
export class Cadence {
  #dessiner;
  #debut = Infinity;
  #fin = -1;
  #image = null;
  #rappels = [];

  constructor(dessiner) {
    this.#dessiner = dessiner;
  }

  refresh(debut, fin, lignes) {
    this.#debut = Math.min(this.#debut, debut ?? 0);
    this.#fin = Math.max(this.#fin, fin ?? lignes - 1);
    if (this.#image !== null) return;
    this.#attendreUneImage();
    this.#vider();
  }

  addRefreshCallback(rappel) {
    this.#rappels.push(rappel);
    this.#attendreUneImage();
    return this.#image;
  }

  #attendreUneImage() {
    this.#image ??= requestAnimationFrame(() => this.#quandUneImage());
  }

  #quandUneImage() {
    this.#image = null;
    if (this.#fin >= 0) {
      this.#attendreUneImage();
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
