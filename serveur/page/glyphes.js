import { estUnFilet, tracerLeFilet } from '/filets.js';
import { tracerLeTrait } from '/traits.js';

// Ce qui descend et ce qui monte le plus.
const JAMBAGES = '_gjpqy|()[]{}@çÇ,;';
const HAMPES = 'ÀÉÎÔŮÅ|()[]{}@^';
const EPAISSEUR_DU_FIN = 0.078;
// Une encre plus légère ne se voit pas.
const OPACITE_VISIBLE = 24;
// Bien plus qu’un écran n’en montre ; un programme peut en inventer sans fin, à coups d’accents combinés.
const MASQUES_RETENUS = 6000;

// Les caractères d’une police à un corps donné, en points de l’écran : leur case, et le masque de chacun. `interligne`
// et `interlettre` agrandissent la case.
export class Glyphes {
  #police;
  #corps;
  #masques = new Map();
  #contexte = document.createElement('canvas').getContext('2d', { willReadFrequently: true });

  constructor({ famille, corps, graisse, grasse, interligne, interlettre }) {
    this.#corps = corps;
    this.#police = (gras, italique) => `${italique ? 'italic ' : ''}${gras ? grasse : graisse} ${corps}px ${famille}`;
    this.#contexte.canvas.width = this.#contexte.canvas.height = Math.ceil(corps * 4);
    this.#preparer(this.#police(false, false));
    const { width, fontBoundingBoxAscent, fontBoundingBoxDescent } = this.#contexte.measureText('W');
    const dessus = Math.max(Math.ceil(fontBoundingBoxAscent), this.#etendue(HAMPES).dessus);
    const dessous = Math.max(Math.ceil(fontBoundingBoxDescent), this.#etendue(JAMBAGES).dessous);
    this.largeur = Math.max(1, Math.round(width) + interlettre);
    this.hauteur = Math.max(dessus + dessous, Math.round((dessus + dessous) * interligne));
    this.base = ((this.hauteur - dessus - dessous) >> 1) + dessus;
    this.fin = Math.max(1, Math.round(corps * EPAISSEUR_DU_FIN));
  }

  // Pour un caractère, accents compris, qui occupe une case ou deux.
  masque(texte, cases, gras, italique) {
    // Un nombre se retrouve plus vite qu’un texte, et il en faut un par case.
    const style = cases * 4 + (gras ? 2 : 0) + (italique ? 1 : 0);
    return this.#retenir(texte.length === 1 ? texte.charCodeAt(0) * 16 + style : `${texte}${style}`, cases, () => {
      if (texte.length === 1 && estUnFilet(texte.charCodeAt(0))) tracerLeFilet(this.#contexte, texte.charCodeAt(0), this);
      else this.#ecrire(texte, cases * this.largeur, this.#police(gras, italique));
    });
  }

  // Un souligné, un surligné, un barré : la largeur d’une case.
  trait(sorte) {
    return this.#retenir(`\n${sorte}`, 1, () => tracerLeTrait(this.#contexte, sorte, { ...this, corps: this.#corps }));
  }

  #retenir(cle, cases, tracer) {
    let masque = this.#masques.get(cle);
    if (masque) return masque;
    if (this.#masques.size >= MASQUES_RETENUS) this.#masques.clear();
    this.#effacer();
    tracer();
    masque = lireLeMasque(this.#contexte, cases * this.largeur, this.hauteur);
    this.#masques.set(cle, masque);
    return masque;
  }

  // Au milieu de ses cases, et resserré s’il n’y tient pas.
  #ecrire(texte, place, police) {
    this.#preparer(police);
    const { width } = this.#contexte.measureText(texte);
    const reduction = Math.min(1, place / width);
    this.#contexte.setTransform(reduction, 0, 0, 1, Math.max(0, (place - width) / 2), 0);
    this.#contexte.fillText(texte, 0, this.base);
  }

  #preparer(police) {
    Object.assign(this.#contexte, { font: police, fontKerning: 'none', textBaseline: 'alphabetic' });
  }

  #effacer() {
    const { canvas } = this.#contexte;
    this.#contexte.setTransform(1, 0, 0, 1, 0, 0);
    this.#contexte.clearRect(0, 0, canvas.width, canvas.height);
  }

  // Les lignes que l’encre touche vraiment : la police et le lissage n’annoncent qu’à peu près.
  #etendue(texte) {
    const { width, height } = this.#contexte.canvas;
    const base = height >> 1;
    this.#effacer();
    for (const signe of texte) this.#contexte.fillText(signe, 0, base);
    const { data } = this.#contexte.getImageData(0, 0, width, height);
    const encrees = Array.from({ length: height }, (_, y) => y)
      .filter((y) => data.subarray(y * width * 4, (y + 1) * width * 4).some((valeur, i) => i % 4 === 3 && valeur >= OPACITE_VISIBLE));
    return { dessus: base - encrees[0], dessous: encrees.at(-1) + 1 - base };
  }
}

// Tracé en noir, ce qui n’est pas noir est un caractère en couleurs.
function lireLeMasque(contexte, largeur, hauteur) {
  const { data } = contexte.getImageData(0, 0, largeur, hauteur);
  const opacites = Uint8Array.from({ length: largeur * hauteur }, (_, i) => data[i * 4 + 3]);
  const points = new Uint32Array(data.buffer);
  const enCouleurs = points.some((point) => (point & 0xffffff) !== 0);
  return { largeur, opacites, couleurs: enCouleurs ? points.map((point) => (point | 0xff000000) >>> 0) : null };
}
