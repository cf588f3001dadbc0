import { melanger, rendreLisible } from '/contraste.js';
import { estUnPave } from '/filets.js';

const PASTILLES = [0xe0a4, 0xe0d6];
// Un texte pâle doit se distinguer de l’autre, et se lire tout de même.
const PART_DU_PALE = 2 / 3;

const enNombre = ({ rgba }) => rgba >>> 8;

// De quelles couleurs se peint une case, d’après ce que le programme a demandé, la sélection, et ce que la recherche y
// surligne.
export class Encres {
  #coeur;
  #couleurs;
  #fg = NaN;
  #bg = NaN;
  fond = 0;
  encre = 0;
  // L’encre avant d’être rendue lisible.
  brute = 0;

  constructor(coeur) {
    this.#coeur = coeur;
  }

  // À chaque dessin : le thème a pu changer.
  recommencer() {
    this.#couleurs = this.#coeur._themeService.colors;
    this.#fg = NaN;
    this.parDefaut = enNombre(this.#couleurs.background);
    this.curseur = enNombre(this.#couleurs.cursor);
    this.dansLeCurseur = enNombre(this.#couleurs.cursorAccent);
  }

  lire(cellule, { selectionnee, decor }) {
    const { fg, bg } = cellule;
    // Les cases se suivent et se ressemblent.
    if (fg === this.#fg && bg === this.#bg && !selectionnee && !decor) return;
    this.#fg = selectionnee || decor ? NaN : fg;
    this.#bg = bg;
    this.#demander(cellule);
    const cachee = this.#memeCouleur(cellule);
    if (decor) this.#decorer(decor);
    if (selectionnee && !decor?.dessus) this.#selectionner();
    this.brute = this.encre;
    if (!cachee || selectionnee || decor) this.#ajuster(cellule.isDim());
  }

  // Le curseur plein : l’encre et le fond y changent de rôle.
  sousLeCurseur() {
    this.#fg = NaN;
    this.fond = this.curseur;
    this.encre = this.brute = this.dansLeCurseur;
  }

  // Les pavés et les pastilles composent des images : ils gardent leur couleur.
  encrePour(texte) {
    const code = texte.charCodeAt(0);
    return estUnPave(code) || (code >= PASTILLES[0] && code <= PASTILLES[1]) ? this.brute : this.encre;
  }

  trait(cellule) {
    if (cellule.isUnderlineColorDefault()) return this.encre;
    const couleur = cellule.getUnderlineColor();
    return cellule.isUnderlineColorRGB() ? couleur & 0xffffff : enNombre(this.#couleurs.ansi[couleur & 0xff]);
  }

  #demander(cellule) {
    const { ansi, foreground, background } = this.#couleurs;
    const vives = cellule.isBold() && cellule.isFgPalette() && cellule.getFgColor() < 8 && this.#coeur.optionsService.rawOptions.drawBoldTextInBrightColors;
    const avant = cellule.isFgRGB() ? cellule.getFgColor() : enNombre(cellule.isFgPalette() ? ansi[cellule.getFgColor() + (vives ? 8 : 0)] : foreground);
    const arriere = cellule.isBgRGB() ? cellule.getBgColor() : enNombre(cellule.isBgPalette() ? ansi[cellule.getBgColor()] : background);
    [this.encre, this.fond] = cellule.isInverse() ? [arriere, avant] : [avant, arriere];
  }

  // Un programme qui écrit d’une couleur sur la même cache ce texte exprès. Deux couleurs différentes qu’un thème confond
  // n’en font pas autant.
  #memeCouleur(cellule) {
    if (cellule.isFgDefault() || cellule.isBgDefault()) return false;
    return cellule.isFgRGB() === cellule.isBgRGB() && cellule.getFgColor() === cellule.getBgColor() && this.encre === this.fond;
  }

  #decorer({ fond, encre }) {
    this.fond = fond ?? this.fond;
    this.encre = encre ?? this.encre;
  }

  #selectionner() {
    const { selectionForeground, selectionBackgroundOpaque, selectionInactiveBackgroundOpaque } = this.#couleurs;
    this.fond = enNombre(this.#coeur._coreBrowserService.isFocused ? selectionBackgroundOpaque : selectionInactiveBackgroundOpaque);
    if (selectionForeground) this.encre = enNombre(selectionForeground);
  }

  #ajuster(pale) {
    const rapport = this.#coeur.optionsService.rawOptions.minimumContrastRatio;
    this.encre = pale ? rendreLisible(melanger(this.encre, this.fond, 0.5), this.fond, rapport * PART_DU_PALE) : rendreLisible(this.encre, this.fond, rapport);
  }
}
