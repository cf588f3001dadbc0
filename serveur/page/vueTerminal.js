import { FitAddon } from '/xterm/addon-fit.mjs';
import { Terminal } from '/xterm/xterm.mjs';
import { apparenceDuTerminal } from '/themes.js';

// Un message trop gros serait refusé par le serveur ; un grand collage part donc en plusieurs.
const TAILLE_D_UN_ENVOI = 64 * 1024;

Terminal.strings.promptLabel = 'Saisie du terminal';
Terminal.strings.tooMuchOutput = 'Trop de texte à annoncer : parcourez-le ligne à ligne';

// Le panneau d’un terminal. Les call-backs donnés : quandSaisie(texte), quandTaille(taille), quandLu(nombre),
// quandSonnerie(), quandTouche(evenement).
export class VueTerminal {
  panneau = document.createElement('section');
  #terminal;
  #ajustement = new FitAddon();
  #quand;
  #rejoue = false;

  constructor({ colonnes, lignes }, quand) {
    this.#quand = quand;
    this.panneau.className = 'panneau';
    this.panneau.setAttribute('role', 'tabpanel');
    this.panneau.hidden = true;
    this.#terminal = new Terminal({
      ...apparenceDuTerminal(),
      cols: colonnes,
      rows: lignes,
      fontFamily: '"DejaVu Sans Mono", "Liberation Mono", Menlo, monospace',
      fontSize: 14,
      scrollback: 5000,
      linkHandler: { activate: (_, adresse) => proposerLeLien(adresse) },
    });
    this.#terminal.loadAddon(this.#ajustement);
    this.#terminal.attachCustomKeyEventHandler((evenement) => !quand.quandTouche(evenement));
    this.#terminal.onData((texte) => this.#saisir(texte));
    // Ce qui a sonné jadis ne sonne plus.
    this.#terminal.onBell(() => this.#rejoue || quand.quandSonnerie());
    this.#terminal.onResize(({ cols, rows }) => quand.quandTaille({ colonnes: cols, lignes: rows }));
  }

  get taille() {
    return { colonnes: this.#terminal.cols, lignes: this.#terminal.rows };
  }

  // Un terminal caché n’a pas de mesures : il n’est posé dans la page, et ajusté, qu’une fois visible.
  montrer() {
    this.panneau.hidden = false;
    if (!this.#terminal.element) this.#terminal.open(this.panneau);
    this.ajuster();
  }

  cacher() {
    this.panneau.hidden = true;
  }

  ajuster() {
    // La reprise doit être relue à la taille où elle a été écrite, sinon ses lignes se replient de travers.
    if (!this.panneau.hidden && !this.#rejoue) this.#ajustement.fit();
  }

  prendreLeFocus() {
    this.#terminal.focus();
  }

  // Les questions que des programmes ont posées jadis au terminal ne doivent pas recevoir de réponse une seconde fois.
  rejouer(texte) {
    this.#rejoue = true;
    this.#terminal.write(texte, () => {
      this.#rejoue = false;
      this.#quand.quandLu(texte.length);
      this.ajuster();
    });
  }

  ecrire(texte) {
    this.#terminal.write(texte, () => this.#quand.quandLu(texte.length));
  }

  // Après ce qui attend encore d’être écrit : le collage encadré n’est connu qu’une fois la reprise relue.
  coller(texte) {
    this.#terminal.write('', () => this.#terminal.paste(texte));
  }

  habiller() {
    Object.assign(this.#terminal.options, apparenceDuTerminal());
  }

  retirer() {
    this.#terminal.dispose();
    this.panneau.remove();
  }

  #saisir(texte) {
    if (this.#rejoue) return;
    for (const morceau of decouper(texte)) this.#quand.quandSaisie(morceau);
  }
}

function* decouper(texte) {
  let debut = 0;
  while (debut < texte.length) {
    let fin = Math.min(debut + TAILLE_D_UN_ENVOI, texte.length);
    // Ne pas séparer les deux moitiés d’un caractère.
    if (fin < texte.length && /[\ud800-\udbff]/.test(texte[fin - 1])) fin -= 1;
    yield texte.slice(debut, fin);
    debut = fin;
  }
}

// L’adresse vient du programme affiché, et son texte peut en cacher une autre : on montre la vraie avant d’ouvrir.
function proposerLeLien(adresse) {
  if (confirm(`Ouvrir ce lien ?\n\n${adresse}`)) open(adresse, '_blank', 'noopener');
}
