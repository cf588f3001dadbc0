// Quelques lignes suffisent à certaines expressions pour ne jamais finir. Comptée en pas, de tant de millisecondes : le temps où
// la page est elle-même retenue n’en est pas, et la réponse arrivée entre-temps est lue d’abord.
const [PATIENCE, PAS] = [30, 100];
// En millisecondes, avant de redemander le programme qui cherche, s’il n’a pas pu se charger.
const REPIT = 500;

// Cherche dans un texte, hors de la page. Une seule recherche à la fois : la suivante interrompt celle qui dure.
export class Chercheur {
  #ouvrier = null;
  #texteConnu = null;
  #interrompre = () => {};

  // Rend ce qu’a trouvé « trouver », ou rien quand c’est trop long ou interrompu.
  chercher(texte, motif) {
    this.#interrompre();
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
      const patienter = (reste) => {
        minuteur = setTimeout(() => (reste > 0 ? patienter(reste - 1) : this.#interrompre()), PAS);
      };
      const demander = () => {
        let commence = false;
        this.#ouvrier ??= new Worker('/fouille.js', { type: 'module' });
        this.#ouvrier.onmessage = ({ data }) => {
          if (data !== 'commence') return finir(data);
          commence = true;
          patienter(PATIENCE);
        };
        this.#ouvrier.onerror = () => {
          if (commence) return this.#interrompre();
          this.#renvoyer();
          minuteur = setTimeout(demander, REPIT);
        };
        this.#ouvrier.postMessage({ texte: texte === this.#texteConnu ? null : texte, motif });
        this.#texteConnu = texte;
      };
      demander();
    });
  }

  fermer() {
    this.#interrompre();
    this.#renvoyer();
  }

  #renvoyer() {
    this.#ouvrier?.terminate();
    this.#ouvrier = null;
    this.#texteConnu = null;
  }
}
