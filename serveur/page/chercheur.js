// En millisecondes : quelques lignes suffisent à certaines expressions pour ne jamais finir.
const PATIENCE = 1500;

// Cherche dans un texte, hors de la page. Une seule recherche à la fois : la suivante interrompt celle qui dure.
export class Chercheur {
  #ouvrier = null;
  #texteConnu = null;
  #interrompre = () => {};

  // Rend ce qu’a trouvé « trouver », ou rien quand c’est trop long ou interrompu.
  chercher(texte, motif) {
    this.#interrompre();
    this.#ouvrier ??= new Worker('/fouille.js', { type: 'module' });
    const neuf = texte !== this.#texteConnu;
    this.#texteConnu = texte;
    return new Promise((rendre) => {
      let minuteur = null;
      const finir = (trouves) => {
        clearTimeout(minuteur);
        this.#interrompre = () => {};
        rendre(trouves);
      };
      this.#interrompre = () => {
        finir(null);
        this.fermer();
      };
      this.#ouvrier.onmessage = ({ data }) => {
        if (data === 'commence') minuteur = setTimeout(this.#interrompre, PATIENCE);
        else finir(data);
      };
      this.#ouvrier.postMessage({ texte: neuf ? texte : null, motif });
    });
  }

  fermer() {
    this.#interrompre();
    this.#ouvrier?.terminate();
    this.#ouvrier = null;
    this.#texteConnu = null;
  }
}
