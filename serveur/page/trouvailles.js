import { Chercheur } from '/chercheur.js';
import { placer, reperer } from '/lignes.js';

// En millisecondes : un terminal bavard ne se relit pas à chaque mot.
const REPIT = 500;
// Par trouvaille, dans ce que rend le chercheur.
const NOMBRES = 3;
// Lisibles sous du texte clair comme sous du texte sombre.
const [FOND, FOND_CHOISIE] = ['#8a6d1f', '#c8871a'];

const chercheur = new Chercheur();

// Ce que l’on trouve dans tout l’historique d’un terminal ; l’une des trouvailles est choisie. Seules celles que l’on voit
// sont surlignées : il peut y en avoir cent mille. `quandChange` dit combien il y en a.
export class Trouvailles {
  #terminal;
  #quandChange;
  #motif = null;
  #texte = null;
  #lignes = [];
  #trouves = new Int32Array(0);
  #choisie = -1;
  #aMontrer = false;
  #tropLong = false;
  #ancre = null;
  #ligneDAncre = 0;
  #surlignees = [];
  #vueSurlignee = null;
  #relecture = null;
  #tour = 0;
  #ecoutes;

  constructor(terminal, quandChange) {
    this.#terminal = terminal;
    this.#quandChange = quandChange;
    const perimer = () => this.#perimer();
    this.#ecoutes = [
      terminal.onWriteParsed(perimer), terminal.onResize(perimer), terminal.buffer.onBufferChange(perimer),
      terminal.onRender(() => this.#surligner()),
    ];
  }

  // De bas en haut d’abord : ce que l’on cherche vient le plus souvent de passer.
  chercher(motif) {
    this.#motif = motif;
    this.#choisie = -1;
    this.#aMontrer = true;
    this.#terminal.clearSelection();
    return this.#relancer();
  }

  async avancer(pas) {
    if (this.#texte === null) await this.#relancer();
    const nombre = this.#nombre;
    if (nombre === 0) return;
    this.#choisie = (this.#choisie + pas + nombre) % nombre;
    this.#montrerLaChoisie();
  }

  oublier() {
    this.#tour += 1;
    clearTimeout(this.#relecture);
    this.#ecoutes.splice(0).forEach((ecoute) => ecoute.dispose());
    this.#effacer();
    this.#ancre?.dispose();
    chercheur.fermer();
  }

  get #nombre() {
    return this.#trouves.length / NOMBRES;
  }

  // De combien les lignes lues ont changé de rang depuis, les plus anciennes étant parties.
  get #decalage() {
    return this.#ancre && !this.#ancre.isDisposed ? this.#ancre.line - this.#ligneDAncre : 0;
  }

  #perimer() {
    this.#texte = null;
    this.#relecture ??= setTimeout(() => this.#relancer(), REPIT);
  }

  async #relancer() {
    clearTimeout(this.#relecture);
    this.#relecture = null;
    this.#tour += 1;
    const tour = this.#tour;
    const ancienne = this.#reperer(this.#choisie);
    if (this.#texte === null) this.#lire();
    const trouves = this.#motif && (await chercheur.chercher(this.#texte, this.#motif));
    if (tour !== this.#tour) return;
    this.#tropLong = this.#motif !== null && trouves === null;
    this.#trouves = trouves ?? new Int32Array(0);
    this.#choisie = ancienne ? this.#retrouver(ancienne) : this.#nombre - 1;
    if (this.#aMontrer) this.#montrerLaChoisie();
    else this.#rafraichir();
    this.#aMontrer = false;
  }

  #lire() {
    this.#ancre?.dispose();
    this.#ancre = this.#terminal.registerMarker(0);
    this.#ligneDAncre = this.#ancre?.line ?? 0;
    this.#lignes = reperer(this.#terminal.buffer.active);
    this.#texte = this.#lignes.map(({ texte }) => texte).join('\n');
  }

  // La place d’une trouvaille, à l’heure qu’il est ; rien si elle est partie avec les plus anciennes lignes.
  #reperer(trouvaille) {
    const [rangDeLigne, debut] = this.#trouves.subarray(trouvaille * NOMBRES);
    const rang = this.#lignes[rangDeLigne]?.rang + this.#decalage;
    return trouvaille >= 0 && rang >= 0 ? { rang, debut } : null;
  }

  // Ce qui était choisi, ou ce qui le suit de plus près.
  #retrouver({ rang, debut }) {
    for (let i = 0; i < this.#nombre; i += 1) {
      const [rangDeLigne, autre] = this.#trouves.subarray(i * NOMBRES);
      const ecart = this.#lignes[rangDeLigne].rang - rang;
      if (ecart > 0 || (ecart === 0 && autre >= debut)) return i;
    }
    return this.#nombre - 1;
  }

  #montrerLaChoisie() {
    const places = this.#placer(this.#choisie);
    this.#rafraichir();
    if (places.length === 0) return;
    const { buffer: { active: { viewportY } }, rows, cols } = this.#terminal;
    const [{ rang, colonne }, derniere] = [places[0], places.at(-1)];
    this.#terminal.select(colonne, rang, (derniere.rang - rang) * cols + derniere.colonne + derniere.largeur - colonne);
    if (rang < viewportY || rang >= viewportY + rows) this.#terminal.scrollToLine(Math.max(0, rang - Math.floor(rows / 2)));
  }

  #placer(trouvaille) {
    const [rangDeLigne, debut, longueur] = this.#trouves.subarray(trouvaille * NOMBRES);
    const ligne = trouvaille >= 0 && this.#lignes[rangDeLigne];
    return ligne ? placer(this.#terminal.buffer.active, { ...ligne, rang: ligne.rang + this.#decalage }, debut, longueur) : [];
  }

  #rafraichir() {
    this.#vueSurlignee = null;
    this.#surligner();
    this.#quandChange({ choisie: this.#choisie, nombre: this.#nombre, tropLong: this.#tropLong });
  }

  #surligner() {
    const { buffer: { active }, rows } = this.#terminal;
    const vue = active.viewportY - this.#decalage;
    if (vue === this.#vueSurlignee) return;
    this.#effacer();
    this.#vueSurlignee = vue;
    for (let i = this.#premiereDepuis(vue); i < this.#nombre; i += 1) {
      if (this.#lignes[this.#trouves[i * NOMBRES]].rang >= vue + rows) break;
      for (const place of this.#placer(i)) this.#decorer(place, i === this.#choisie);
    }
  }

  // La première trouvaille dont la ligne finit à ce rang ou plus bas : elles sont dans l’ordre, et peut-être très nombreuses.
  #premiereDepuis(rangVu) {
    let [bas, haut] = [0, this.#nombre];
    while (bas < haut) {
      const milieu = (bas + haut) >> 1;
      const { rang, debuts } = this.#lignes[this.#trouves[milieu * NOMBRES]];
      if (rang + debuts.length > rangVu) haut = milieu;
      else bas = milieu + 1;
    }
    return bas;
  }

  // Celle qui est choisie se voit même sous la sélection, qu’elle est aussi.
  #decorer({ rang, colonne, largeur }, choisie) {
    const { baseY, cursorY } = this.#terminal.buffer.active;
    const marker = this.#terminal.registerMarker(rang - baseY - cursorY);
    const couleur = choisie ? { backgroundColor: FOND_CHOISIE, layer: 'top' } : { backgroundColor: FOND };
    const decoration = this.#terminal.registerDecoration({ marker, x: colonne, width: largeur, ...couleur });
    this.#surlignees.push(marker, ...(decoration ? [decoration] : []));
  }

  #effacer() {
    this.#surlignees.splice(0).forEach((surlignee) => surlignee.dispose());
    this.#vueSurlignee = null;
  }
}
