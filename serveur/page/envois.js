// En caractères partis vers le serveur et que le programme n’a pas encore lus.
const EN_ROUTE_MAXIMUM = 1024 * 1024;
// En millisecondes, sans que le programme lise rien.
const PATIENCE = 5000;
// Un message trop gros serait refusé par le serveur : un grand collage part en plusieurs, sans couper un caractère.
const MORCEAUX = /[^]{1,65536}/gu;

// Ce qui attend de partir vers un programme, dans l’ordre où on l’a tapé et collé. Un grand collage suit l’allure de
// celui qui lit ; de celui qui ne lit plus, `quandSourd` prévient.
export class Envois {
  #envoyer;
  #quandSourd;
  #attente = [];
  #enRoute = 0;
  #minuteur = null;

  constructor({ envoyer, quandSourd }) {
    this.#envoyer = envoyer;
    this.#quandSourd = quandSourd;
  }

  ajouter(texte) {
    this.#attente.push(...(texte.match(MORCEAUX) ?? []));
    this.#suivre();
  }

  lu(nombre) {
    this.#enRoute = Math.max(0, this.#enRoute - nombre);
    clearTimeout(this.#minuteur);
    this.#minuteur = null;
    this.#suivre();
  }

  // Rend ce qui n’était pas parti.
  oublier() {
    const reste = this.#attente.splice(0).join('');
    this.#enRoute = 0;
    clearTimeout(this.#minuteur);
    this.#minuteur = null;
    return reste;
  }

  #suivre() {
    while (this.#attente.length > 0 && this.#enRoute < EN_ROUTE_MAXIMUM) {
      const morceau = this.#attente.shift();
      this.#enRoute += morceau.length;
      this.#envoyer(morceau);
    }
    if (this.#attente.length > 0) this.#minuteur ??= setTimeout(this.#quandSourd, PATIENCE);
  }
}
