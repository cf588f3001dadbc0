// Les terminaux cachés lisent l’un après l’autre : vingt bavards n’ont pas à retarder les touches de celui qu’on voit.
export class Lectures {
  #attente = [];
  #enCours = null;

  // `lecture` écrit dans la vue, puis appelle ce qu’on lui donne.
  ajouter(vue, lecture) {
    this.#attente.push({ vue, lecture });
    this.#suivre();
  }

  // Tout de suite, et dans l’ordre, ce que cette vue attendait de lire.
  rattraper(vue) {
    const siennes = this.#attente.filter((autre) => autre.vue === vue);
    this.oublier(vue);
    for (const { lecture } of siennes) lecture(() => {});
  }

  oublier(vue) {
    this.#attente = this.#attente.filter((autre) => autre.vue !== vue);
    // Une vue retirée n’annoncera jamais qu’elle a fini.
    if (this.#enCours?.vue === vue) this.#enCours = null;
    this.#suivre();
  }

  #suivre() {
    if (this.#enCours || this.#attente.length === 0) return;
    const suivante = (this.#enCours = this.#attente.shift());
    suivante.lecture(() => {
      if (this.#enCours !== suivante) return;
      this.#enCours = null;
      this.#suivre();
    });
  }
}
