const OPAQUE = 0xff000000;

// Les canaux d’un point se suivent en mémoire dans l’ordre rouge, vert, bleu, opacité : le bleu a donc le poids du rouge.
const enPoint = (couleur) => (OPAQUE | (couleur & 0xff) << 16 | couleur & 0xff00 | couleur >> 16) >>> 0;

// Une ligne du terminal, peinte point par point puis posée d’un coup sur la toile.
export class Bande {
  #image;
  #points;

  constructor(largeur, hauteur) {
    this.hauteur = hauteur;
    this.#image = new ImageData(largeur, hauteur);
    this.#points = new Uint32Array(this.#image.data.buffer);
  }

  poserSur(contexte, haut) {
    contexte.putImageData(this.#image, 0, haut);
  }

  remplir(x, y, largeur, hauteur, couleur) {
    const point = enPoint(couleur);
    const pas = this.#image.width;
    const droite = Math.min(x + largeur, pas);
    for (let rang = y; rang < y + hauteur; rang += 1) this.#points.fill(point, rang * pas + x, rang * pas + droite);
  }

  // Ce qui est noir dans le masque prend cette couleur ; un masque en couleurs garde les siennes.
  poser({ largeur, opacites, couleurs }, x, couleur) {
    const points = this.#points;
    const pas = this.#image.width;
    const etendue = Math.min(largeur, pas - x);
    let encre = enPoint(couleur);
    for (let debut = 0, rang = x; debut < opacites.length; debut += largeur, rang += pas) {
      for (let i = 0; i < etendue; i += 1) {
        const opacite = opacites[debut + i];
        if (opacite === 0) continue;
        if (couleurs) encre = couleurs[debut + i];
        points[rang + i] = opacite === 255 ? encre : meler(points[rang + i], encre, opacite);
      }
    }
  }
}

function meler(dessous, dessus, opacite) {
  const reste = 255 - opacite;
  const rouge = ((dessous & 255) * reste + (dessus & 255) * opacite + 127) / 255;
  const vert = ((dessous >> 8 & 255) * reste + (dessus >> 8 & 255) * opacite + 127) / 255;
  const bleu = ((dessous >> 16 & 255) * reste + (dessus >> 16 & 255) * opacite + 127) / 255;
  return (OPAQUE | bleu << 16 | vert << 8 | rouge) >>> 0;
}
