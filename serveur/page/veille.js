// En millisecondes, sauf la dernière, en caractères.
export const SILENCE = 10_000;
export const LONGUE_DUREE = 10_000;
const DELAI_DE_L_ECHO = 400;
const GROSSE_SORTIE = 1000;
const MINUTE = 60_000;
const PAR_MINUTE = 6;

// Ce que xterm répond de lui-même aux programmes : focus, position, taille, nature du terminal.
export const REPONSE_D_OFFICE = /^\x1b(\[[IO]$|\[[?>]?[\d;]*[cnRty]|\[\?[\d;]+S|[P\]_])/;

// Quand un terminal a-t-il de quoi appeler son utilisateur ? La décision seule : ni page, ni horloge.
export class Veille {
  regarde = false;
  #annonce = false;
  #saisi = Infinity;
  #sourdJusqua = -Infinity;
  #nonVu = 0;
  #derniere = null;
  #appels = [];

  // Ce qui s’affiche sous les yeux de l’utilisateur n’a pas à lui être annoncé.
  regarder(oui) {
    this.regarde = oui;
    if (oui) this.#oublier();
  }

  saisir(texte, maintenant) {
    if (REPONSE_D_OFFICE.test(texte)) return;
    this.#oublier();
    this.#saisi = maintenant;
    this.#sourdJusqua = texte.includes('\r') ? maintenant : maintenant + DELAI_DE_L_ECHO;
  }

  // Un programme plein écran se redessine : ce n’est rien de neuf.
  redimensionner(maintenant) {
    this.#sourdJusqua = maintenant + DELAI_DE_L_ECHO;
  }

  sortir(nombre, maintenant) {
    if (this.regarde || maintenant < this.#sourdJusqua) return;
    this.#nonVu += nombre;
    this.#derniere = maintenant;
  }

  // L’instant où le silence dira quelque chose ; rien quand il ne dira rien.
  get echeance() {
    if (this.#annonce || this.#derniere === null) return null;
    const digne = this.#nonVu >= GROSSE_SORTIE || this.#derniere - this.#saisi >= LONGUE_DUREE;
    return digne ? this.#derniere + SILENCE : null;
  }

  // Ce qui n’apprend rien de plus la seconde fois : vrai une seule fois, jusqu’à ce que l’utilisateur revienne.
  annoncer(maintenant) {
    return !this.#annonce && this.appeler(maintenant);
  }

  // Ce qui dit chaque fois autre chose : vrai, sauf pour un programme qui appelle trop souvent.
  appeler(maintenant) {
    this.#appels = this.#appels.filter((heure) => maintenant - heure < MINUTE);
    if (this.regarde || this.#appels.length === PAR_MINUTE) return false;
    this.#appels.push(maintenant);
    return (this.#annonce = true);
  }

  #oublier() {
    this.#annonce = false;
    this.#nonVu = 0;
    this.#derniere = null;
  }
}
